// How far a point lies from the middle of a radial gradient, in whole units: the index i, at most 255, with
// i * i <= distance * distance <= (i + 1) * (i + 1). Where the distance is a whole number both it and the one below
// fit; the device searches from a predicted index and stays at the first that fits, so the prediction decides.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "render/sampling.h"

namespace qel {

struct RadialSearch {
    std::int32_t predicted = 0;  // for the next point
    std::int32_t previous = 0;   // index of the point before
    bool first = true;           // no point was looked for yet
};

// Predicts the index of the first point of a run.
RadialSearch beginRadialSearch(SamplePoint first);

// The whole part of the root for each square of a distance below 255, as a table: no search is needed but where the
// root is exact.
inline constexpr std::uint32_t tabulatedSquares = 255 * 255;
extern const std::array<std::uint8_t, tabulatedSquares> wholeRoots;

// The index of the next point of the run, by its distance along both axes in whole units.
inline std::int32_t nextRadialIndex(RadialSearch& search, std::int32_t u, std::int32_t v) {
    constexpr std::int32_t last = 255;
    const auto across = static_cast<std::uint32_t>(u * u), down = static_cast<std::uint32_t>(v * v);
    const std::uint32_t square = across + down;
    std::int32_t index = last;
    if (square < tabulatedSquares) index = wholeRoots[square];
    const bool exact = square <= tabulatedSquares && square == static_cast<std::uint32_t>(index * index);
    if (exact && search.predicted < index) --index;
    const std::int32_t change = search.first ? 0 : index - search.previous;
    search.first = false;
    search.previous = index;
    search.predicted = std::clamp(index + change, 0, last);
    return index;
}

}  // namespace qel
