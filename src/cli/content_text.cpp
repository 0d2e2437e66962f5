#include "cli/content_text.h"

#include <algorithm>

namespace qel::cli {
namespace {

void appendCodePoint(std::string& text, char32_t point) {
    const auto tail = [&text, point](unsigned shift) { text += static_cast<char>(0x80 | ((point >> shift) & 0x3F)); };
    if (point < 0x80) {
        text += static_cast<char>(point);
    } else if (point < 0x800) {
        text += static_cast<char>(0xC0 | point >> 6);
        tail(0);
    } else if (point < 0x10000) {
        text += static_cast<char>(0xE0 | point >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | point >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

constexpr bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

}  // namespace

std::string utf8FromBytes(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) appendCodePoint(text, static_cast<unsigned char>(byte));
    return text;
}

std::string utf8FromWide(std::u16string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (isHighSurrogate(unit) && at + 1 < text.size() && isLowSurrogate(text[at + 1])) {
            appendCodePoint(result, 0x10000u + ((unit & 0x3FFu) << 10) + (text[++at] & 0x3FFu));
        } else {
            appendCodePoint(result, isHighSurrogate(unit) || isLowSurrogate(unit) ? 0xFFFD : unit);
        }
    }
    return result;
}

std::string printable(std::string_view bytes) {
    std::string visible(bytes);
    const auto isControl = [](char byte) {
        const auto point = static_cast<unsigned char>(byte);
        return point < 0x20 || (point >= 0x7F && point < 0xA0);
    };
    std::ranges::replace_if(visible, isControl, '?');
    return utf8FromBytes(visible);
}

}  // namespace qel::cli
