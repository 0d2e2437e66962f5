// Writes content bytes: whole numbers little-endian, bit fields with the most significant bit first.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace qel::author {

using Bytes = std::vector<std::uint8_t>;

class ByteWriter {
  public:
    // Whole bytes. Each first fills up the byte that a bit field has begun.
    ByteWriter& u8(std::uint32_t value) { return littleEndian(value, 1); }
    ByteWriter& u16(std::uint32_t value) { return littleEndian(value, 2); }
    ByteWriter& u24(std::uint32_t value) { return littleEndian(value, 3); }
    ByteWriter& u32(std::uint32_t value) { return littleEndian(value, 4); }
    ByteWriter& littleEndian(std::uint32_t value, unsigned bytes);
    ByteWriter& bytes(std::span<const std::uint8_t> values);
    ByteWriter& text(std::string_view characters);       // the characters alone
    ByteWriter& shortText(std::string_view characters);  // behind a u8 length; throws std::length_error above 255

    // Bit fields, 0 to 32 bits wide. Bits of the value above the width are dropped.
    ByteWriter& ub(std::uint32_t value, unsigned bits);
    ByteWriter& sb(std::int32_t value, unsigned bits) { return ub(static_cast<std::uint32_t>(value), bits); }
    ByteWriter& align();  // the rest of a byte that was begun is 0

    // What was written, aligned.
    Bytes take();

  private:
    Bytes bytes_;
    unsigned freeBits_ = 0;  // of the last byte
};

// The narrowest field that holds every value.
unsigned signedWidth(std::span<const std::int32_t> values);
unsigned unsignedWidth(std::span<const std::uint32_t> values);

}  // namespace qel::author
