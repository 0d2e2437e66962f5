// Action code in a movie source: a listing, in the source itself or in a file beside it.
#pragma once

#include <vector>

#include "author/source_data.h"

namespace qel::author {

// "Stop", a listing of several lines, [ "Push 1", "Trace" ], { "file": "game.actions" } or { "hex": "07" }. Throws
// SourceError.
Bytes codeOf(const SourceValue& value, const ReadSourceFile& readFile);

// The same, or a list of such, each of which runs on its own. A list of nothing but texts is one listing.
std::vector<Bytes> codesOf(const SourceValue& value, const ReadSourceFile& readFile);

}  // namespace qel::author
