// Reading the fields of a part and writing them down in one go.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "author/inspect_listing.h"
#include "format/geometry.h"

namespace qel::author::inspector {

enum class ByteOrder : std::uint8_t { little, big };

// A cursor over one part's bytes that writes down each named field as it reads it (a name of nullptr: read and not
// listed). The first read past the end is the part's problem; that read and all later ones give 0 and list nothing, so
// a reader goes through its fields without asking after each.
class FieldReader {
  public:
    FieldReader(Listing& list, std::size_t begin, std::size_t end, ByteOrder order = ByteOrder::little)
        : list_(list), at_(begin), end_(end), order_(order) {}

    std::uint8_t u8(const char* name) { return static_cast<std::uint8_t>(whole(name, 1)); }
    std::uint16_t u16(const char* name) { return static_cast<std::uint16_t>(whole(name, 2)); }
    std::uint32_t u24(const char* name) { return whole(name, 3); }
    std::uint32_t u32(const char* name) { return whole(name, 4); }
    bool skip(std::size_t count, const char* what);

    // Bit fields, most significant bit first; align() leaves the byte that was begun.
    void align() { bitsLeft_ = 0; }
    std::uint32_t bits(unsigned count, const char* name);
    std::int32_t signedBits(unsigned count, const char* name);
    bool flag(const char* name);
    // A list of `count` values of `width` bits each; what is there of it when it is cut off. Values of 0 bits are not
    // listed.
    std::vector<std::int32_t> bitList(std::uint32_t count, unsigned width, const char* name);

    Point point(const char* name);  // each of these aligns first
    Point unsignedPoint(const char* name);
    Rect rectangle(const char* name);
    Matrix matrix(const char* name);
    void fullColourTransform();
    void compactColourTransform();
    // A colour in a stored format, listed as the RGB565 word it becomes. Unknown formats have no value.
    void colour(unsigned format, const char* name);
    std::string_view shortText(const char* name);  // u8 length, bytes
    std::string_view rest(const char* name);       // all that is left, as a text

    bool broken() const { return broken_; }
    std::size_t at() const { return at_; }
    std::size_t left() const { return broken_ ? 0 : end_ - at_; }
    std::uint64_t bitsLeft() const { return broken_ ? 0 : std::uint64_t{end_ - at_} * 8 + bitsLeft_; }

  private:
    bool need(std::size_t count, const char* name);
    std::uint32_t raw(const char* what, unsigned bytes);
    std::uint32_t whole(const char* name, unsigned bytes);
    std::uint32_t rawBits(unsigned count, const char* name);
    std::int32_t rawSignedBits(unsigned count, const char* name);
    void colourTransform(bool shared);

    Listing& list_;
    std::size_t at_, end_;
    ByteOrder order_;
    std::uint8_t bitBuffer_ = 0;
    unsigned bitsLeft_ = 0;
    bool broken_ = false;
};

}  // namespace qel::author::inspector
