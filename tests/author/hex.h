// Bytes as a test writes them: pairs of hexadecimal digits.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace qel::author {

inline std::string hex(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        constexpr char digits[] = "0123456789abcdef";
        if (!text.empty()) text += ' ';
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

}  // namespace qel::author
