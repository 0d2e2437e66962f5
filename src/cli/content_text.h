// Texts that come from content, made fit for reports and terminals. Content has no encoding: each byte stands for the
// code point of the same number.
#pragma once

#include <string>
#include <string_view>

namespace qel::cli {

std::string utf8FromBytes(std::string_view bytes);
std::string utf8FromWide(std::u16string_view text);  // a lone surrogate becomes U+FFFD

// As utf8FromBytes, with control characters replaced: content must not drive the terminal.
std::string printable(std::string_view bytes);

}  // namespace qel::cli
