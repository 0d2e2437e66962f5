#include "author/structures.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace qel::author {
namespace {

constexpr unsigned widthBits = 5;
constexpr unsigned widestField = 31;

unsigned fieldWidth(std::span<const std::int32_t> values) {
    const unsigned width = signedWidth(values);
    if (width > widestField) throw std::out_of_range("a value that takes more than 31 bits");
    return width;
}

void writeSigned(ByteWriter& to, std::span<const std::int32_t> values) {
    const unsigned width = fieldWidth(values);
    to.ub(width, widthBits);
    for (const std::int32_t value : values) to.sb(value, width);
}

// A pair of matrix fields behind the bit that says whether they are there.
void writePair(ByteWriter& to, std::int32_t first, std::int32_t second) {
    const bool present = first != 0 || second != 0;
    to.ub(present ? 1 : 0, 1);
    if (present) writeSigned(to, std::array{first, second});
}

using Channels = std::array<std::int32_t, 4>;

Channels offsetsOf(const ColourTransform& t) { return {t.redOffset, t.greenOffset, t.blueOffset, t.alphaOffset}; }
Channels multipliersOf(const ColourTransform& t) {
    return {t.redMultiplier, t.greenMultiplier, t.blueMultiplier, t.alphaMultiplier};
}

constexpr std::int32_t noOffset = 0, fullMultiplier = 256;

std::array<bool, 4> unlike(const Channels& values, std::int32_t usual) {
    std::array<bool, 4> differs{};
    std::ranges::transform(values, differs.begin(), [usual](std::int32_t value) { return value != usual; });
    return differs;
}

bool any(const std::array<bool, 4>& flags) { return std::ranges::count(flags, true) > 0; }

void writeFlags(ByteWriter& to, const std::array<bool, 4>& flags) {
    for (const bool flag : flags) to.ub(flag ? 1 : 0, 1);
}

// The fields themselves share one width, which 4 bits announce: 15 bits at the most.
void writeChannels(ByteWriter& to, const ColourTransform& transform, const std::array<bool, 4>& offsetPresent,
                   const std::array<bool, 4>& multiplierPresent) {
    constexpr unsigned channelWidthBits = 4, widest = 15;
    const Channels offsets = offsetsOf(transform), multipliers = multipliersOf(transform);
    unsigned width = 1;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        if (offsetPresent[i]) width = std::max(width, signedWidth({&offsets[i], 1}));
        const auto multiplier = static_cast<std::uint32_t>(multipliers[i]);
        if (multiplierPresent[i]) width = std::max(width, unsignedWidth({&multiplier, 1}));
    }
    if (width > widest) throw std::out_of_range("a colour transform value that takes more than 15 bits");
    to.ub(width, channelWidthBits);
    for (std::size_t i = 0; i < offsets.size(); ++i)
        if (offsetPresent[i]) to.sb(offsets[i], width);
    for (std::size_t i = 0; i < multipliers.size(); ++i)
        if (multiplierPresent[i]) to.sb(multipliers[i], width);
}

}  // namespace

void writePoint(ByteWriter& to, Point point) {
    to.align();
    writeSigned(to, std::array<std::int32_t, 2>{point.x, point.y});
    to.align();
}

void writeRect(ByteWriter& to, const Rect& rect) {
    to.align();
    writeSigned(to, std::array<std::int32_t, 4>{rect.xMin, rect.yMin, rect.xMax, rect.yMax});
    to.align();
}

void writeMatrix(ByteWriter& to, const Matrix& matrix) {
    to.align();
    writePair(to, matrix.a, matrix.d);
    writePair(to, matrix.b, matrix.c);
    writePair(to, matrix.tx, matrix.ty);
    to.align();
}

void writeColourTransform(ByteWriter& to, const ColourTransform& transform) {
    const auto offsets = unlike(offsetsOf(transform), noOffset);
    const auto multipliers = unlike(multipliersOf(transform), fullMultiplier);
    to.align();
    to.ub(any(offsets) ? 1 : 0, 1).ub(any(multipliers) ? 1 : 0, 1);
    writeFlags(to, offsets);
    writeFlags(to, multipliers);
    writeChannels(to, transform, offsets, multipliers);
    to.align();
}

void writeCompactColourTransform(ByteWriter& to, const ColourTransform& transform) {
    const auto offsets = unlike(offsetsOf(transform), noOffset);
    const auto multipliers = unlike(multipliersOf(transform), fullMultiplier);
    std::array<bool, 4> channels{};
    for (std::size_t i = 0; i < channels.size(); ++i) channels[i] = offsets[i] || multipliers[i];
    const bool hasOffsets = any(offsets), hasMultipliers = any(multipliers);
    to.align();
    to.ub(hasOffsets ? 1 : 0, 1).ub(hasMultipliers ? 1 : 0, 1);
    writeFlags(to, channels);
    constexpr std::array<bool, 4> none{};
    writeChannels(to, transform, hasOffsets ? channels : none, hasMultipliers ? channels : none);
    to.align();
}

void writeColourValue(ByteWriter& to, ColourFormat format, std::uint32_t colour) {
    const std::uint32_t red = colour >> 16 & 0xFF, green = colour >> 8 & 0xFF, blue = colour & 0xFF;
    switch (format) {
        case ColourFormat::rgb332: to.u8((red & 0xE0) | (green & 0xE0) >> 3 | blue >> 6); break;
        case ColourFormat::xrgb4444: to.u16((red & 0xF0) << 4 | (green & 0xF0) | blue >> 4); break;
        case ColourFormat::rgbx4444: to.u16((red & 0xF0) << 8 | (green & 0xF0) << 4 | (blue & 0xF0)); break;
        case ColourFormat::rgb565: to.u16(rgb565From24(colour)); break;
        case ColourFormat::rgb888: to.u24(colour); break;
    }
}

void writePackedColour(ByteWriter& to, ColourFormat format, std::uint32_t colour) {
    constexpr unsigned formatBits = 4;
    to.align();
    to.ub(static_cast<std::uint32_t>(format), formatBits);
    writeColourValue(to, format, colour);
}

}  // namespace qel::author
