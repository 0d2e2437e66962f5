// Bytes and texts of a movie source: data stands there as hexadecimal digits or lies in a file beside it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "author/byte_writer.h"
#include "author/source_document.h"

namespace qel::author {

// The bytes of a file beside the source; nothing when they cannot be had. The name is relative and does not lead out of
// the source's folder.
using ReadSourceFile = std::function<std::optional<Bytes>(const std::string& name)>;

// Pairs of hexadecimal digits, white space anywhere between pairs. These throw SourceError.
Bytes hexOf(const SourceValue& value);

// A file beside the source, by its name.
Bytes fileOf(const SourceValue& name, const ReadSourceFile& readFile);

// "0a ff …" or { "file": "beep.raw" }.
Bytes dataOf(const SourceValue& value, const ReadSourceFile& readFile);

// A text as content holds it: the bytes of the source's text, or { "hex": "b0a1" } for bytes that are no text of
// JSON's.
std::string contentTextOf(const SourceValue& value, std::size_t mostBytes);

}  // namespace qel::author
