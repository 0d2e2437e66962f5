#include "movie/content_reader.h"

#include <algorithm>

namespace qel {

bool ContentReader::require(std::size_t count) {
    bitsLeft_ = 0;
    if (available(count)) return true;
    cursor_ = bytes_.size();
    spoiled_ = true;
    return false;
}

void ContentReader::seek(std::size_t cursor) {
    bitsLeft_ = 0;
    spoiled_ = spoiled_ || cursor > bytes_.size();
    cursor_ = std::min(cursor, bytes_.size());
}

void ContentReader::skip(std::size_t count) {
    if (require(count)) cursor_ += count;
}

std::uint8_t ContentReader::u8() { return static_cast<std::uint8_t>(littleEndian(1)); }
std::uint16_t ContentReader::u16() { return static_cast<std::uint16_t>(littleEndian(2)); }
std::uint32_t ContentReader::u24() { return littleEndian(3); }
std::uint32_t ContentReader::u32() { return littleEndian(4); }

std::uint32_t ContentReader::littleEndian(unsigned bytes) {
    if (!require(bytes)) return 0;
    std::uint32_t value = 0;
    for (unsigned i = 0; i < bytes; ++i) value |= std::uint32_t{bytes_[cursor_ + i]} << (8 * i);
    cursor_ += bytes;
    return value;
}

std::span<const std::uint8_t> ContentReader::take(std::size_t count) {
    if (!require(count)) return {};
    const std::span<const std::uint8_t> taken = bytes_.subspan(cursor_, count);
    cursor_ += count;
    return taken;
}

std::span<const std::uint8_t> ContentReader::shortText() { return take(u8()); }

std::uint32_t ContentReader::ub(unsigned bits) {
    std::uint32_t value = 0;
    while (bits > 0) {
        if (bitsLeft_ == 0) {
            if (!require(1)) return 0;
            bitBuffer_ = bytes_[cursor_++];
            bitsLeft_ = 8;
        }
        const unsigned taken = std::min(bits, bitsLeft_);
        bitsLeft_ -= taken;
        bits -= taken;
        value = value << taken | ((bitBuffer_ >> bitsLeft_) & ((1u << taken) - 1));
    }
    return value;
}

std::int32_t ContentReader::sb(unsigned bits) {
    const std::uint32_t value = ub(bits);
    if (bits == 0 || bits >= 32) return static_cast<std::int32_t>(value);
    const std::uint32_t sign = 1u << (bits - 1);
    return static_cast<std::int32_t>((value ^ sign) - sign);
}

}  // namespace qel
