// The device's divisions: no division instruction for small divisors, but tables of reciprocals, with their rounding.
#pragma once

#include <array>
#include <cstdint>

#include "format/integers.h"

namespace qel {

inline constexpr std::int32_t largestTableDivisor = 512;

inline constexpr auto reciprocals = [] {  // floor(2^23 / n); entries 0 and 1 hold 2^23
    std::array<std::int32_t, largestTableDivisor + 1> table{1 << 23, 1 << 23};
    for (std::uint32_t n = 2; n < table.size(); ++n) table[n] = static_cast<std::int32_t>((1u << 23) / n);
    return table;
}();

inline constexpr auto shortReciprocals = [] {  // floor(65536 / n); entries 0 and 1 hold the largest value that fits
    std::array<std::uint16_t, largestTableDivisor + 1> table{65535, 65535};
    for (std::uint32_t n = 2; n < table.size(); ++n) table[n] = static_cast<std::uint16_t>(65536 / n);
    return table;
}();

// How far an edge moves in x, 16.16, for each of its `dy` rows. A piece of a curve may cover no row, or turn back by
// one through rounding: it counts as one row.
constexpr std::int32_t edgeSlope(std::int32_t dx, std::int32_t dy) {
    if (dy < 0) dy = 0;
    if (dy <= largestTableDivisor) return wrap32((std::int64_t{dx} * reciprocals[static_cast<std::size_t>(dy)]) >> 7);
    return wrap32((std::int64_t{dx} << 16) / dy);
}

// a / b as 16.16, exact where they are equal. b is not 0 unless a is.
constexpr std::int64_t fixedDivideWide(std::int64_t a, std::int32_t b) {
    if (a == b) return 0x10000;
    if (a == -std::int64_t{b}) return -0x10000;
    const std::int64_t numerator = b < 0 ? -a : a;
    const std::int64_t divisor = b < 0 ? -std::int64_t{b} : b;
    if (divisor <= largestTableDivisor) return numerator * shortReciprocals[static_cast<std::size_t>(divisor)];
    return numerator * 65536 / divisor;
}

// As fixedDivideWide, cut to 32 bits.
constexpr std::int32_t fixedDivide(std::int32_t a, std::int32_t b) { return wrap32(fixedDivideWide(a, b)); }

}  // namespace qel
