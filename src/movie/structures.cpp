#include "movie/structures.h"

#include <array>

#include "format/colour_formats.h"
#include "format/integers.h"

namespace qel {

Point readPoint(ContentReader& reader) {
    reader.align();
    const unsigned bits = reader.ub(5);
    const std::int32_t x = reader.sb(bits);
    const std::int32_t y = reader.sb(bits);
    return {wrap16(x), wrap16(y)};
}

Rect readRect(ContentReader& reader) {
    reader.align();
    const unsigned bits = reader.ub(5);
    std::int16_t values[4];
    for (std::int16_t& value : values) value = wrap16(reader.sb(bits));
    return {values[0], values[1], values[2], values[3]};
}

Matrix readMatrix(ContentReader& reader) {
    Matrix matrix;
    reader.align();
    if (reader.ub(1) != 0) {
        const unsigned bits = reader.ub(5);
        matrix.a = reader.sb(bits);
        matrix.d = reader.sb(bits);
    }
    if (reader.ub(1) != 0) {
        const unsigned bits = reader.ub(5);
        matrix.b = reader.sb(bits);
        matrix.c = reader.sb(bits);
    }
    if (reader.ub(1) != 0) {
        const unsigned bits = reader.ub(5);
        matrix.tx = wrap16(reader.sb(bits));
        matrix.ty = wrap16(reader.sb(bits));
    }
    return matrix;
}

namespace {

using ChannelBits = std::array<bool, 4>;  // red, green, blue, alpha

ChannelBits readChannelBits(ContentReader& reader) {
    ChannelBits bits;
    for (bool& bit : bits) bit = reader.ub(1) != 0;
    return bits;
}

}  // namespace

ColourTransform readColourTransform(ContentReader& reader, ColourTransformForm form) {
    reader.align();
    const bool hasOffsets = reader.ub(1) != 0, hasMultipliers = reader.ub(1) != 0;
    const ChannelBits offsets = readChannelBits(reader);
    const ChannelBits multipliers = form == ColourTransformForm::full ? readChannelBits(reader) : offsets;
    const unsigned bits = reader.ub(4);
    ColourTransform t;
    std::int16_t* const offsetFields[] = {&t.redOffset, &t.greenOffset, &t.blueOffset, &t.alphaOffset};
    std::uint16_t* const multiplierFields[] = {&t.redMultiplier, &t.greenMultiplier, &t.blueMultiplier,
                                               &t.alphaMultiplier};
    for (std::size_t i = 0; hasOffsets && i < offsets.size(); ++i)
        if (offsets[i]) *offsetFields[i] = wrap16(reader.sb(bits));
    for (std::size_t i = 0; hasMultipliers && i < multipliers.size(); ++i)
        if (multipliers[i]) *multiplierFields[i] = static_cast<std::uint16_t>(reader.ub(bits));
    return t;
}

namespace {

// The fields of the short formats as the top bits of the channels of an RGB565 word; the low bits stay 0.
constexpr std::uint16_t from332(unsigned v) {
    return static_cast<std::uint16_t>((v & 0xE0) << 8 | (v & 0x1C) << 6 | (v & 0x03) << 3);
}
constexpr std::uint16_t from444(unsigned red, unsigned green, unsigned blue) {
    return static_cast<std::uint16_t>(red << 12 | green << 7 | blue << 1);
}
static_assert(from332(0xFF) == 0xE718 && from444(15, 15, 15) == 0xF79E);

}  // namespace

std::uint16_t readColour(ContentReader& reader, std::uint32_t format, std::uint16_t before) {
    switch (static_cast<ColourFormat>(format)) {
        case ColourFormat::rgb332: return from332(reader.u8());
        case ColourFormat::xrgb4444: {
            const unsigned v = reader.u16();
            return from444(v >> 8 & 15, v >> 4 & 15, v & 15);
        }
        case ColourFormat::rgbx4444: {
            const unsigned v = reader.u16();
            return from444(v >> 12 & 15, v >> 8 & 15, v >> 4 & 15);
        }
        case ColourFormat::rgb565: return reader.u16();
        case ColourFormat::rgb888: return rgb565From24(reader.u24());
    }
    return before;
}

std::uint16_t readPackedColour(ContentReader& reader, std::uint16_t before) {
    reader.align();
    const std::uint32_t format = reader.ub(4);
    return readColour(reader, format, before);
}

}  // namespace qel
