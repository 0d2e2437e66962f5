// Writing runs of pixels on one row: stored, or blended as `blend565` does it, many at a time.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>

namespace qel {

using PixelRun = std::span<std::uint16_t>;

// Stores one colour, eight pixels at a time; the last eight may be stored twice.
inline void storeColour(PixelRun run, std::uint16_t colour) {
    constexpr std::size_t lanes = 8;
    std::uint16_t* const pixels = run.data();
    const std::size_t count = run.size();
    if (count < lanes) {
        for (std::size_t i = 0; i < count; ++i) pixels[i] = colour;
        return;
    }
    std::uint16_t eight[lanes];
    for (std::uint16_t& pixel : eight) pixel = colour;
    for (std::size_t i = 0; i + lanes <= count; i += lanes) std::memcpy(pixels + i, eight, sizeof eight);
    std::memcpy(pixels + count - lanes, eight, sizeof eight);
}

// Blends one colour over the run, alpha 0 to 255; 255 stores it.
void blendColour(PixelRun run, std::uint16_t colour, std::uint8_t alpha);

// Blends a colour and an alpha of its own over each pixel; 255 stores the colour. `colours` and `alphas` are as long as
// the run.
void blendColours(PixelRun run, const std::uint16_t* colours, const std::uint8_t* alphas);

}  // namespace qel
