#include "render/radial_index.h"

#include <cstdlib>

#include "render/fixed.h"

namespace qel {
namespace {

constexpr std::int64_t hypotenuseOne = 1 << 20;
constexpr std::size_t hypotenuseSteps = 64;

// The largest whole number whose square is at most `square`.
constexpr std::int64_t wholeRoot(std::int64_t square) {
    std::int64_t root = 0;
    for (std::int64_t bit = std::int64_t{1} << 31; bit != 0; bit >>= 1)
        if ((root + bit) * (root + bit) <= square) root += bit;
    return root;
}

// sqrt(1 + (i / 64)^2), 20 bits behind the point, rounded; the last entry stands twice.
constexpr auto hypotenuses = [] {
    std::array<std::int32_t, hypotenuseSteps + 2> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto step = static_cast<std::int64_t>(std::min(i, hypotenuseSteps));
        // Twice the root of (64^2 + i^2) * (2^20 / 64)^2, so that its last bit rounds.
        const std::int64_t scale = hypotenuseOne / std::int64_t{hypotenuseSteps};
        const std::int64_t squares = std::int64_t{hypotenuseSteps * hypotenuseSteps} + step * step;
        table[i] = static_cast<std::int32_t>((wholeRoot(4 * squares * scale * scale) + 1) >> 1);
    }
    return table;
}();
static_assert(hypotenuses[0] == 1048576 && hypotenuses[64] == 1482910 && hypotenuses[65] == 1482910);

std::array<std::uint8_t, tabulatedSquares> makeRoots() {
    std::array<std::uint8_t, tabulatedSquares> table{};
    std::uint32_t root = 0;
    for (std::uint32_t square = 0; square < table.size(); ++square) {
        if ((root + 1) * (root + 1) <= square) ++root;
        table[square] = static_cast<std::uint8_t>(root);
    }
    return table;
}

// smaller / larger as 16.16, larger not 0.
std::uint32_t ratioOf(std::uint32_t smaller, std::uint32_t larger) {
    if (smaller == larger) return 0x10000;
    if (larger <= std::uint32_t{largestTableDivisor}) return smaller * shortReciprocals[larger];
    return static_cast<std::uint32_t>((std::uint64_t{smaller} << 16) / larger);
}

}  // namespace

const std::array<std::uint8_t, tabulatedSquares> wholeRoots = makeRoots();

RadialSearch beginRadialSearch(SamplePoint first) {
    const auto across = static_cast<std::uint32_t>(std::abs(first.u >> 16));
    const auto down = static_cast<std::uint32_t>(std::abs(first.v >> 16));
    const std::uint32_t larger = std::max(across, down);
    if (larger == 0) return {};
    const std::uint32_t ratio = ratioOf(std::min(across, down), larger);
    const std::uint32_t step = ratio >> 10, part = ratio & 1023;
    const std::int64_t hypotenuse =
        ((1024 - part) * std::int64_t{hypotenuses[step]} + part * std::int64_t{hypotenuses[step + 1]}) >> 14;
    const std::int64_t estimate = (hypotenuse * larger) >> 16;
    return {.predicted = static_cast<std::int32_t>(std::clamp<std::int64_t>(estimate, 0, 255))};
}

}  // namespace qel
