#include "author/inspect_fields.h"

#include <array>

#include "format/colour_formats.h"
#include "format/integers.h"

namespace qel::author::inspector {
namespace {

constexpr const char* offsetNames[] = {"redOffset", "greenOffset", "blueOffset", "alphaOffset"};
constexpr const char* multiplierNames[] = {"redMultiplier", "greenMultiplier", "blueMultiplier", "alphaMultiplier"};

}  // namespace

bool FieldReader::need(std::size_t count, const char* name) {
    if (broken_) return false;
    if (end_ - at_ >= count) return true;
    broken_ = true;
    addError(list_, at_, "%s is cut off: %zu bytes are needed, %zu are left", name ? name : "a field", count,
             end_ - at_);
    return false;
}

std::uint32_t FieldReader::raw(const char* what, unsigned bytes) {
    if (!need(bytes, what)) return 0;
    std::uint32_t value = 0;
    for (unsigned i = 0; i < bytes; ++i) {
        const unsigned shift = 8 * (order_ == ByteOrder::little ? i : bytes - 1 - i);
        value |= std::uint32_t{list_.content[at_ + i]} << shift;
    }
    at_ += bytes;
    return value;
}

std::uint32_t FieldReader::whole(const char* name, unsigned bytes) {
    const std::uint32_t value = raw(name, bytes);
    if (name && !broken_) addNumber(list_, name, value);
    return value;
}

bool FieldReader::skip(std::size_t count, const char* what) {
    if (!need(count, what)) return false;
    at_ += count;
    return true;
}

std::uint32_t FieldReader::rawBits(unsigned count, const char* name) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < count; ++i) {
        if (bitsLeft_ == 0) {
            if (!need(1, name)) return 0;
            bitBuffer_ = list_.content[at_++];
            bitsLeft_ = 8;
        }
        value = value << 1 | ((bitBuffer_ >> --bitsLeft_) & 1u);
    }
    return value;
}

std::int32_t FieldReader::rawSignedBits(unsigned count, const char* name) {
    const std::uint32_t value = rawBits(count, name);
    if (count == 0 || count >= 32 || !(value >> (count - 1) & 1)) return static_cast<std::int32_t>(value);
    return static_cast<std::int32_t>(value | ~0u << count);
}

std::uint32_t FieldReader::bits(unsigned count, const char* name) {
    const std::uint32_t value = rawBits(count, name);
    if (name && !broken_) addNumber(list_, name, value);
    return value;
}

std::int32_t FieldReader::signedBits(unsigned count, const char* name) {
    const std::int32_t value = rawSignedBits(count, name);
    if (name && !broken_) addNumber(list_, name, value);
    return value;
}

bool FieldReader::flag(const char* name) {
    const bool value = rawBits(1, name) != 0;
    if (name && !broken_) addYesNo(list_, name, value);
    return value;
}

std::vector<std::int32_t> FieldReader::bitList(std::uint32_t count, unsigned width, const char* name) {
    std::vector<std::int32_t> values;
    if (width == 0) return values;
    for (std::uint32_t i = 0; i < count && !broken_; ++i) {
        const auto value = static_cast<std::int32_t>(rawBits(width, name));
        if (!broken_) values.push_back(value);
    }
    addNumbers(list_, name, values);
    return values;
}

Point FieldReader::point(const char* name) {
    align();
    const unsigned width = rawBits(5, name);
    const std::int16_t x = wrap16(rawSignedBits(width, name));
    const std::int16_t y = wrap16(rawSignedBits(width, name));
    if (!broken_) addNumbers(list_, name, std::array<std::int32_t, 2>{x, y});
    return {x, y};
}

Point FieldReader::unsignedPoint(const char* name) {
    align();
    const unsigned width = rawBits(5, name);
    const auto x = static_cast<std::uint16_t>(rawBits(width, name)),
               y = static_cast<std::uint16_t>(rawBits(width, name));
    if (!broken_) addNumbers(list_, name, std::array<std::int32_t, 2>{x, y});
    return {wrap16(x), wrap16(y)};
}

Rect FieldReader::rectangle(const char* name) {
    align();
    const unsigned width = rawBits(5, name);
    std::array<std::int32_t, 4> sides;
    for (std::int32_t& side : sides) side = wrap16(rawSignedBits(width, name));
    if (!broken_) addNumbers(list_, name, sides);
    return {wrap16(sides[0]), wrap16(sides[1]), wrap16(sides[2]), wrap16(sides[3])};
}

// Fields that are not there stay 0: without its scale part a matrix maps everything to one point.
Matrix FieldReader::matrix(const char* name) {
    align();
    Matrix m;
    if (rawBits(1, name)) {
        const unsigned width = rawBits(5, name);
        m.a = rawSignedBits(width, name);
        m.d = rawSignedBits(width, name);
    }
    if (rawBits(1, name)) {
        const unsigned width = rawBits(5, name);
        m.b = rawSignedBits(width, name);
        m.c = rawSignedBits(width, name);
    }
    if (rawBits(1, name)) {
        const unsigned width = rawBits(5, name);
        m.tx = wrap16(rawSignedBits(width, name));
        m.ty = wrap16(rawSignedBits(width, name));
    }
    if (!broken_) addMatrix(list_, name, m);
    return m;
}

void FieldReader::colourTransform(bool shared) {
    align();
    const bool hasOffsets = rawBits(1, "colour transform") != 0;
    const bool hasMultipliers = rawBits(1, "colour transform") != 0;
    const std::uint32_t offsets = rawBits(4, "colour transform");
    const std::uint32_t multipliers = shared ? offsets : rawBits(4, "colour transform");
    const unsigned width = rawBits(4, "colour transform");
    for (unsigned channel = 0; channel < 4 && hasOffsets; ++channel) {
        if (offsets >> (3 - channel) & 1) signedBits(width, offsetNames[channel]);
    }
    for (unsigned channel = 0; channel < 4 && hasMultipliers; ++channel) {
        if (multipliers >> (3 - channel) & 1) bits(width, multiplierNames[channel]);
    }
}

void FieldReader::fullColourTransform() { colourTransform(false); }
void FieldReader::compactColourTransform() { colourTransform(true); }

void FieldReader::colour(unsigned format, const char* name) {
    if (broken_) return;
    align();
    std::uint32_t word = 0;
    switch (ColourFormat{static_cast<std::uint8_t>(format)}) {
        case ColourFormat::rgb332: {
            const std::uint32_t v = raw(name, 1);
            word = (v & 0xE0) << 8 | (v & 0x1C) << 6 | (v & 0x03) << 3;
            break;
        }
        case ColourFormat::xrgb4444: {
            const std::uint32_t v = raw(name, 2);
            word = (v & 0x0F00) << 4 | (v & 0x00F0) << 3 | (v & 0x000F) << 1;
            break;
        }
        case ColourFormat::rgbx4444: {
            const std::uint32_t v = raw(name, 2);
            word = (v & 0xF000) | (v & 0x0F00) >> 1 | (v & 0x00F0) >> 3;
            break;
        }
        case ColourFormat::rgb565: word = raw(name, 2); break;
        case ColourFormat::rgb888: word = rgb565From24(raw(name, 3)); break;
        default: addWarning(list_, at_, "colour format %u is unknown: %s has no value", format, name); return;
    }
    if (!broken_) addHex(list_, name, word);
}

std::string_view FieldReader::shortText(const char* name) {
    const std::size_t length = raw(name, 1);
    const std::size_t begin = at_;
    if (!skip(length, name)) return {};
    const std::string_view text{reinterpret_cast<const char*>(list_.content.data()) + begin, length};
    addText(list_, name, text);
    return text;
}

std::string_view FieldReader::rest(const char* name) {
    if (broken_) return {};
    const std::string_view text{reinterpret_cast<const char*>(list_.content.data()) + at_, end_ - at_};
    at_ = end_;
    addText(list_, name, text);
    return text;
}

}  // namespace qel::author::inspector
