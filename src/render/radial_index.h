// How far points lie from the middle of a radial gradient, in whole units: the index i, at most 255, with
// i * i <= distance * distance <= (i + 1) * (i + 1). Where the distance is a whole number both it and the one below
// fit; the device searches from a predicted index and stays at the first that fits, so the prediction decides.
#pragma once

#include <cstdint>
#include <span>

#include "render/sampling.h"

namespace qel {

// A walk over the pixels of a span. The first prediction is an estimate of the distance, every other one goes on as
// the indexes of the two pixels before did.
struct RadialWalk {
    std::uint32_t u = 0, v = 0;          // of the next pixel, 16.16; wrap at 32 bits
    std::uint32_t stepU = 0, stepV = 0;  // from pixel to pixel
    std::int32_t predicted = 0;          // for the next pixel
    std::int32_t previous = 0;           // index of the pixel before
    bool first = true;                   // there is none
};

RadialWalk beginRadialWalk(SamplePoint first, std::int32_t stepU, std::int32_t stepV);

// The indexes of the next pixels, at most `longestRadialRun`.
inline constexpr std::size_t longestRadialRun = 256;
void takeRadialIndexes(RadialWalk& walk, std::span<std::uint8_t> indexes);

// The prediction for a first pixel: 0 to 255.
std::int32_t estimateDistance(SamplePoint point);

}  // namespace qel
