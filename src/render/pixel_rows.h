// Writing runs of pixels on one row: stored, or blended as `blend565` does it, many at a time.
#pragma once

#include <cstdint>
#include <span>

namespace qel {

using PixelRun = std::span<std::uint16_t>;

// Stores one colour.
void storeColour(PixelRun run, std::uint16_t colour);

// Blends one colour over the run, alpha 0 to 255; 255 stores it.
void blendColour(PixelRun run, std::uint16_t colour, std::uint8_t alpha);

// Blends a colour and an alpha of its own over each pixel; 255 stores the colour. `colours` and `alphas` are as long as
// the run.
void blendColours(PixelRun run, const std::uint16_t* colours, const std::uint8_t* alphas);

}  // namespace qel
