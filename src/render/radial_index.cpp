#include "render/radial_index.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "render/fixed.h"
#include "render/wide_registers.h"

namespace qel {
namespace {

constexpr std::int32_t lastIndex = 255;

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

// The last two indexes of a run, as the prediction for the next pixel needs them.
void predict(RadialWalk& walk, std::int32_t index) {
    const std::int32_t change = walk.first ? 0 : index - walk.previous;
    walk.first = false;
    walk.previous = index;
    walk.predicted = std::clamp(index + change, 0, lastIndex);
}

// The whole part of each distance, and whether it is the distance itself. Points that are too far are all the same.
// Roots of such small squares are exact in single precision wherever arithmetic is that of IEEE 754.
[[gnu::always_inline]] inline void measureLoop(const RadialWalk& walk, std::span<std::uint8_t> indexes,
                                               std::uint8_t* exact) {
    constexpr std::int32_t tooFar = lastIndex + 1;
    std::uint8_t* const out = indexes.data();
    const auto count = static_cast<std::uint32_t>(indexes.size());
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::int32_t u = static_cast<std::int32_t>(walk.u + i * walk.stepU) >> 16;
        const std::int32_t v = static_cast<std::int32_t>(walk.v + i * walk.stepV) >> 16;
        const std::int32_t across = std::min(u < 0 ? -u : u, tooFar), down = std::min(v < 0 ? -v : v, tooFar);
        const std::int32_t square = across * across + down * down;
        const auto root = static_cast<std::int32_t>(std::sqrt(static_cast<float>(square)));
        out[i] = static_cast<std::uint8_t>(std::min(root, lastIndex));
        exact[i] = static_cast<std::uint8_t>(root * root == square);
    }
}

void measurePlain(const RadialWalk& walk, std::span<std::uint8_t> indexes, std::uint8_t* exact) {
    measureLoop(walk, indexes, exact);
}
QEL_WIDE void measureWide(const RadialWalk& walk, std::span<std::uint8_t> indexes, std::uint8_t* exact) {
    measureLoop(walk, indexes, exact);
}
const auto measure = chooseWide(measurePlain, measureWide);

// Brings the walk to pixel `at` of a run whose indexes in front of it are settled.
void catchUp(RadialWalk& walk, std::span<const std::uint8_t> indexes, std::size_t from, std::size_t at) {
    if (at - from > 2) {
        walk.first = false;
        walk.previous = indexes[at - 3];
        from = at - 2;
    }
    for (; from < at; ++from) predict(walk, indexes[from]);
}

// smaller / larger as 16.16, larger not 0.
std::uint32_t ratioOf(std::uint32_t smaller, std::uint32_t larger) {
    if (smaller == larger) return 0x10000;
    if (larger <= std::uint32_t{largestTableDivisor}) return smaller * shortReciprocals[larger];
    return static_cast<std::uint32_t>((std::uint64_t{smaller} << 16) / larger);
}

}  // namespace

std::int32_t estimateDistance(SamplePoint point) {
    const auto across = static_cast<std::uint32_t>(std::abs(point.u >> 16));
    const auto down = static_cast<std::uint32_t>(std::abs(point.v >> 16));
    const std::uint32_t larger = std::max(across, down);
    if (larger == 0) return 0;
    const std::uint32_t ratio = ratioOf(std::min(across, down), larger);
    const std::uint32_t step = ratio >> 10, part = ratio & 1023;
    const std::int64_t hypotenuse =
        ((1024 - part) * std::int64_t{hypotenuses[step]} + part * std::int64_t{hypotenuses[step + 1]}) >> 14;
    const std::int64_t estimate = (hypotenuse * larger) >> 16;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(estimate, 0, lastIndex));
}

RadialWalk beginRadialWalk(SamplePoint first, std::int32_t stepU, std::int32_t stepV) {
    return {.u = static_cast<std::uint32_t>(first.u),
            .v = static_cast<std::uint32_t>(first.v),
            .stepU = static_cast<std::uint32_t>(stepU),
            .stepV = static_cast<std::uint32_t>(stepV),
            .predicted = estimateDistance(first)};
}

void takeRadialIndexes(RadialWalk& walk, std::span<std::uint8_t> indexes) {
    std::uint8_t exact[longestRadialRun];
    const std::size_t count = indexes.size();
    measure(walk, indexes, exact);
    std::size_t settled = 0;  // the walk has seen the indexes in front of it
    for (std::size_t i = 0; i < count; ++i) {
        if (i + 8 <= count) {
            std::uint64_t eight;
            std::memcpy(&eight, exact + i, sizeof eight);
            if (eight == 0) {
                i += 7;
                continue;
            }
        }
        if (exact[i] == 0) continue;
        catchUp(walk, indexes, settled, i);
        settled = i;
        if (walk.predicted < indexes[i]) --indexes[i];
    }
    catchUp(walk, indexes, settled, count);
    walk.u += static_cast<std::uint32_t>(count) * walk.stepU;
    walk.v += static_cast<std::uint32_t>(count) * walk.stepV;
}

}  // namespace qel
