#include "author/byte_writer.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <utility>

namespace qel::author {

ByteWriter& ByteWriter::littleEndian(std::uint32_t value, unsigned bytes) {
    align();
    for (unsigned i = 0; i < bytes; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    return *this;
}

ByteWriter& ByteWriter::bytes(std::span<const std::uint8_t> values) {
    align();
    bytes_.insert(bytes_.end(), values.begin(), values.end());
    return *this;
}

ByteWriter& ByteWriter::text(std::string_view characters) {
    align();
    bytes_.insert(bytes_.end(), characters.begin(), characters.end());
    return *this;
}

ByteWriter& ByteWriter::shortText(std::string_view characters) {
    if (characters.size() > 255) throw std::length_error("a text of more than 255 bytes");
    return u8(static_cast<std::uint32_t>(characters.size())).text(characters);
}

ByteWriter& ByteWriter::ub(std::uint32_t value, unsigned bits) {
    while (bits > 0) {
        if (freeBits_ == 0) {
            bytes_.push_back(0);
            freeBits_ = 8;
        }
        const unsigned written = std::min(bits, freeBits_);
        const std::uint32_t part = value >> (bits - written) & ((1u << written) - 1);
        freeBits_ -= written;
        bits -= written;
        bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | part << freeBits_);
    }
    return *this;
}

ByteWriter& ByteWriter::align() {
    freeBits_ = 0;
    return *this;
}

Bytes ByteWriter::take() {
    align();
    return std::exchange(bytes_, {});
}

unsigned signedWidth(std::span<const std::int32_t> values) {
    unsigned width = 1;
    for (const std::int32_t value : values) {
        const auto magnitude = static_cast<std::uint32_t>(value < 0 ? ~value : value);
        width = std::max(width, static_cast<unsigned>(std::bit_width(magnitude)) + 1);
    }
    return width;
}

unsigned unsignedWidth(std::span<const std::uint32_t> values) {
    unsigned width = 0;
    for (const std::uint32_t value : values) width = std::max(width, static_cast<unsigned>(std::bit_width(value)));
    return width;
}

}  // namespace qel::author
