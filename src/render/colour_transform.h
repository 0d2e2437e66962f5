// Colour transforms at work, bit for bit as the device applies them.
#pragma once

#include "format/geometry.h"

namespace qel {

// One channel of two transforms as one: `first` applies to the channel, then `second`.
struct ChannelTransform {
    std::uint16_t multiplier = 256;
    std::int16_t offset = 0;
};
constexpr ChannelTransform composeChannel(ChannelTransform first, ChannelTransform second) {
    const std::int32_t offset = ((first.offset * second.multiplier) >> 8) + second.offset;
    return {static_cast<std::uint16_t>((std::uint32_t{first.multiplier} * second.multiplier) >> 8),
            static_cast<std::int16_t>(offset > 254    ? 255
                                      : offset < -254 ? -255
                                                      : offset)};
}

// The transform that applies `first` and then `second`. Every offset of the result lies in -255 to 255.
constexpr ColourTransform compose(const ColourTransform& first, const ColourTransform& second) {
    const ChannelTransform red =
        composeChannel({first.redMultiplier, first.redOffset}, {second.redMultiplier, second.redOffset});
    const ChannelTransform green =
        composeChannel({first.greenMultiplier, first.greenOffset}, {second.greenMultiplier, second.greenOffset});
    const ChannelTransform blue =
        composeChannel({first.blueMultiplier, first.blueOffset}, {second.blueMultiplier, second.blueOffset});
    const ChannelTransform alpha =
        composeChannel({first.alphaMultiplier, first.alphaOffset}, {second.alphaMultiplier, second.alphaOffset});
    return {red.multiplier, green.multiplier, blue.multiplier, alpha.multiplier,
            red.offset,     green.offset,     blue.offset,     alpha.offset};
}

// A channel of 8 bits, kept within 0 to 255.
constexpr std::uint8_t transformChannel(std::uint16_t multiplier, std::int16_t offset, std::uint32_t channel) {
    const std::int64_t value = offset + std::int64_t{(multiplier * channel) >> 8};
    return static_cast<std::uint8_t>(value >= 255 ? 255 : value < 1 ? 0 : value);
}

constexpr std::uint8_t transformAlpha(const ColourTransform& colours, std::uint8_t alpha) {
    return transformChannel(colours.alphaMultiplier, colours.alphaOffset, alpha);
}

// An RGB565 colour. Channels are widened with zeros below.
constexpr std::uint16_t transformColour(const ColourTransform& colours, std::uint16_t colour) {
    const std::uint32_t word = colour;
    const unsigned red = transformChannel(colours.redMultiplier, colours.redOffset, (word >> 8) & 0xF8);
    const unsigned green = transformChannel(colours.greenMultiplier, colours.greenOffset, (word >> 3) & 0xFC);
    const unsigned blue = transformChannel(colours.blueMultiplier, colours.blueOffset, (word << 3) & 0xF8);
    return static_cast<std::uint16_t>((red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3);
}

}  // namespace qel
