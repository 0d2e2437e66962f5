// Keys that the host handed in and that no dispatch has taken yet: a ring that holds seven. A key that finds it full is
// lost.
#pragma once

#include <array>
#include <cstdint>

namespace qel {

class KeyQueue {
  public:
    static constexpr std::uint8_t none = 254;  // what an empty queue yields; no real key has this code

    void append(std::uint8_t key) {
        const unsigned next = (write_ + 1) % size;
        if (next == read_) return;
        keys_[write_] = key;
        write_ = next;
    }

    std::uint8_t take() {
        if (read_ == write_) return none;
        const std::uint8_t key = keys_[read_];
        read_ = (read_ + 1) % size;
        return key;
    }

    unsigned count() const { return (write_ + size - read_) % size; }

    // The key that is taken when `index` others have been; there are more than `index`.
    std::uint8_t at(unsigned index) const { return keys_[(read_ + index) % size]; }

    void remove(unsigned index) {
        for (; index + 1 < count(); ++index) keys_[(read_ + index) % size] = keys_[(read_ + index + 1) % size];
        write_ = (write_ + size - 1) % size;
    }

    void clear() { read_ = write_ = 0; }

  private:
    static constexpr unsigned size = 8;

    std::array<std::uint8_t, size> keys_{};
    unsigned write_ = 0, read_ = 0;
};

}  // namespace qel
