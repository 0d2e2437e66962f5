// How a colour is stored in content. The 4-bit format code stands among the bit fields of the record, the value at the
// next byte boundary. Low bits are never replicated when a shorter format becomes RGB565.
#pragma once

#include <cstdint>

namespace qel {

enum class ColourFormat : std::uint8_t {
    rgb332 = 0,    // one byte RRRGGGBB
    xrgb4444 = 1,  // 16 bits xxxxRRRRGGGGBBBB
    rgbx4444 = 2,  // 16 bits RRRRGGGGBBBBxxxx
    rgb565 = 3,    // 16 bits, as it is drawn
    rgb888 = 4,    // three bytes: blue, green, red
};

// A 24-bit colour, 0xRRGGBB, as the 16-bit word that is drawn.
constexpr std::uint16_t rgb565From24(std::uint32_t colour) {
    return static_cast<std::uint16_t>(((colour >> 8) & 0xF800) | ((colour >> 5) & 0x07E0) | ((colour >> 3) & 0x001F));
}

static_assert(rgb565From24(0xFF0000) == 0xF800 && rgb565From24(0x00FF00) == 0x07E0 && rgb565From24(0x0000FF) == 0x1F);

}  // namespace qel
