// The one colour blend of the device.
#pragma once

#include <cstdint>

namespace qel {

// Mixes `source` over `below` by alpha, 0 to 254 (at 255 the caller stores `source`). Red is taken from the whole word,
// so its lowest bit depends on green: the device draws that way, and so do we.
constexpr std::uint16_t blend565(std::uint16_t below, std::uint16_t source, int alpha) {
    const int d = below, s = source;
    const int red = (d + (((s - d) * alpha) >> 8)) & ~0x07FF;
    const int green = ((d & 0x07E0) + ((((s & 0x07E0) - (d & 0x07E0)) * alpha) >> 8)) & ~0x001F;
    const int blue = (d & 0x001F) + ((((s & 0x001F) - (d & 0x001F)) * alpha) >> 8);
    return static_cast<std::uint16_t>(red | green | blue);
}
static_assert(blend565(0x0000, 0xFFFF, 128) == 0x7BEF && blend565(0x1234, 0xFFFF, 0) == 0x1234);

}  // namespace qel
