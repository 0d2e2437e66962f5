// A cursor over fed bytes of content, the only way the engine reads them. It cannot pass its limit: what is read there
// is 0 and spoils the reader, so a parser may read a whole structure and ask `ok` once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qel {

class ContentReader {
  public:
    ContentReader() = default;
    explicit ContentReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool ok() const { return !spoiled_; }
    std::size_t left() const { return bytes_.size() - cursor_; }
    bool available(std::size_t count) const { return left() >= count; }
    std::size_t cursor() const { return cursor_; }  // bytes from the start
    std::span<const std::uint8_t> rest() const { return bytes_.subspan(cursor_); }

    // Moving. Each discards the bits left over from a bit field.
    void seek(std::size_t cursor);
    void skip(std::size_t count);

    // Whole bytes; numbers are little-endian. Each continues at the next byte boundary.
    std::uint8_t u8();
    std::uint16_t u16();
    std::uint32_t u24();
    std::uint32_t u32();
    std::uint32_t littleEndian(unsigned bytes);
    std::span<const std::uint8_t> take(std::size_t count);  // empty when they are not all there
    ContentReader section(std::size_t count) { return ContentReader(take(count)); }
    std::span<const std::uint8_t> shortText();  // u8 length, then that many bytes

    // Bit fields, most significant bit first, 0 to 32 bits wide.
    void align() { bitsLeft_ = 0; }
    std::uint32_t ub(unsigned bits);
    std::int32_t sb(unsigned bits);

  private:
    bool require(std::size_t count);

    std::span<const std::uint8_t> bytes_;
    std::size_t cursor_ = 0;
    std::uint8_t bitBuffer_ = 0;
    unsigned bitsLeft_ = 0;
    bool spoiled_ = false;
};

}  // namespace qel
