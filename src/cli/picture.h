// Pictures that commands keep of presented frames, and the files they write them to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "player/host_context.h"

namespace qel::cli {

// RGB565 words, rows top to bottom, no padding.
struct Picture {
    std::uint32_t width = 0, height = 0;
    std::vector<std::uint16_t> pixels;
};

Picture copyFrame(const FrameRecord& frame);

// The words as a file or a checksum has them: little-endian on every machine.
std::vector<std::uint8_t> littleEndianBytes(const Picture& picture);

struct Rgb {
    std::uint8_t red = 0, green = 0, blue = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

// To 8 bits a channel. The high bits are repeated below, so that white is 255 and black 0, and cutting the low bits off
// gives the word back.
constexpr Rgb rgbFrom565(std::uint16_t word) {
    const unsigned red = word >> 11, green = (word >> 5) & 0x3Fu, blue = word & 0x1Fu;
    return {static_cast<std::uint8_t>(red << 3 | red >> 2), static_cast<std::uint8_t>(green << 2 | green >> 4),
            static_cast<std::uint8_t>(blue << 3 | blue >> 2)};
}

// Both answer whether the file was written whole.
bool writePng(const std::string& path, const Picture& picture);
bool writeRaw(const std::string& path, const Picture& picture);

}  // namespace qel::cli
