// Counted memory: everything a movie allocates is charged against its budget with the size it has on the device,
// whatever it takes here, so that the same movie runs out at the same place on every machine. A request that would
// exceed the budget first makes the owner of decoded characters give some back. Every request can fail.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

#include "movie/charges.h"
#include "movie/result.h"

namespace qel {

struct PlayerInstance;

inline constexpr std::uint32_t blockHeaderCharge = 4;

struct Pool {
    static constexpr std::uint32_t unlimited = std::numeric_limits<std::uint32_t>::max();

    PlayerInstance* player = nullptr;  // leads to the general heap
    std::uint32_t budget = unlimited;  // bytes
    std::uint32_t inUse = 0;           // bytes charged
    std::uint32_t peak = 0;            // the most that was charged at one time
    std::uint32_t within = 0;          // the smaller of budget and peak: up to here there is nothing to ask or to note
    // Gives back at least `bytes`; false when it cannot. Null: there is nothing to purge.
    bool (*purge)(void* context, std::uint32_t bytes) = nullptr;
    void* purgeContext = nullptr;
};

// A block of `size` bytes here, charged as `charge` bytes plus the device's block header. Null when the budget or the
// heap cannot give it.
void* allocateBlock(Pool& pool, std::size_t size, std::uint32_t charge);
void freeBlock(Pool& pool, void* block);  // null is allowed

// Whether so many bytes more, headers included, change nothing but `inUse`.
inline bool hasRoomWithin(const Pool& pool, std::uint32_t bytes) {
    return std::uint64_t{pool.inUse} + bytes <= pool.within;
}

// Charges a block that the device would have and this machine has not, its header included. False when the budget
// refuses it.
bool chargeMore(Pool& pool, std::uint32_t charge);
inline bool chargeOnly(Pool& pool, std::uint32_t charge) {
    if (!hasRoomWithin(pool, charge + blockHeaderCharge)) return chargeMore(pool, charge);
    pool.inUse += charge + blockHeaderCharge;
    return true;
}
inline void giveBackCharge(Pool& pool, std::uint32_t charge) { pool.inUse -= charge + blockHeaderCharge; }

struct PoolDelete {
    Pool* pool = nullptr;
    template <class T>
    void operator()(T* object) const {
        std::destroy_at(object);
        freeBlock(*pool, object);
    }
};

// Owns one object in a pool.
template <class T>
using PoolPtr = std::unique_ptr<T, PoolDelete>;

template <class T, class... Arguments>
PoolPtr<T> makePooled(Pool& pool, Arguments&&... arguments) {
    void* block = allocateBlock(pool, sizeof(T), charge<T>);
    if (!block) return {};
    return PoolPtr<T>(new (block) T{std::forward<Arguments>(arguments)...}, PoolDelete{&pool});
}

// An array in a pool: growing is an operation with a result. Owns its elements.
template <class T>
class PoolArray {
  public:
    PoolArray() = default;
    PoolArray(PoolArray&& other) noexcept
        : pool_(other.pool_),
          data_(std::exchange(other.data_, nullptr)),
          size_(std::exchange(other.size_, 0)),
          capacity_(std::exchange(other.capacity_, 0)) {}
    PoolArray& operator=(PoolArray&& other) noexcept {
        if (this != &other) {
            clear();
            pool_ = other.pool_;
            data_ = std::exchange(other.data_, nullptr);
            size_ = std::exchange(other.size_, 0);
            capacity_ = std::exchange(other.capacity_, 0);
        }
        return *this;
    }
    PoolArray(const PoolArray&) = delete;
    PoolArray& operator=(const PoolArray&) = delete;
    ~PoolArray() { clear(); }

    std::uint32_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    std::uint32_t capacity() const { return capacity_; }
    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }
    T& operator[](std::uint32_t index) { return data_[index]; }
    const T& operator[](std::uint32_t index) const { return data_[index]; }
    T& back() { return data_[size_ - 1]; }
    std::span<T> span() { return {data_, size_}; }
    std::span<const T> span() const { return {data_, size_}; }

    // Frees everything.
    void clear() {
        truncate(0);
        if (data_) freeBlock(*pool_, data_);
        data_ = nullptr;
        capacity_ = 0;
    }

    // Drops the elements from `count` on and keeps the room.
    void truncate(std::uint32_t count) {
        if (count >= size_) return;
        std::destroy(data_ + count, data_ + size_);
        size_ = count;
    }

    // Room for `capacity` elements in all. outOfMemory: the array is as it was.
    Result reserve(Pool& pool, std::uint32_t capacity) {
        if (capacity <= capacity_) return Result::done;
        const std::uint64_t bytes = std::uint64_t{charge<T>} * capacity;
        if (bytes > std::numeric_limits<std::int32_t>::max()) return Result::outOfMemory;
        auto* grown = static_cast<T*>(allocateBlock(pool, sizeof(T) * capacity, static_cast<std::uint32_t>(bytes)));
        if (!grown) return Result::outOfMemory;
        std::uninitialized_move(begin(), end(), grown);
        std::destroy(begin(), end());
        if (data_) freeBlock(*pool_, data_);
        pool_ = &pool;
        data_ = grown;
        capacity_ = capacity;
        return Result::done;
    }

    // Appends; the room doubles when it is used up.
    Result append(Pool& pool, T value) {
        if (size_ == capacity_ && failed(reserve(pool, capacity_ < 4 ? 4 : capacity_ * 2))) return Result::outOfMemory;
        appendReserved(std::move(value));
        return Result::done;
    }

    // Appends where `reserve` has made room: cannot fail.
    void appendReserved(T value) {
        new (data_ + size_) T(std::move(value));
        ++size_;
    }

    // The same, made in its place.
    template <class Make>
    void makeReserved(Make make) {
        new (data_ + size_) T(make());
        ++size_;
    }

    // Drops the last element; there is one.
    void dropLast() { std::destroy_at(data_ + --size_); }

    // Exactly `count` elements, all new and value-initialized.
    Result assignZeros(Pool& pool, std::uint32_t count) {
        truncate(0);
        if (failed(reserve(pool, count))) return Result::outOfMemory;
        std::uninitialized_value_construct(data_, data_ + count);
        size_ = count;
        return Result::done;
    }

    // A copy of `values`, which must not lie in this array.
    Result assign(Pool& pool, std::span<const T> values) {
        static_assert(std::is_trivially_copyable_v<T>);
        truncate(0);
        if (failed(reserve(pool, static_cast<std::uint32_t>(values.size())))) return Result::outOfMemory;
        std::uninitialized_copy(values.begin(), values.end(), data_);
        size_ = static_cast<std::uint32_t>(values.size());
        return Result::done;
    }

  private:
    Pool* pool_ = nullptr;
    T* data_ = nullptr;
    std::uint32_t size_ = 0, capacity_ = 0;
};

// A zero-terminated copy of content bytes.
using PoolText = PoolArray<char>;
Result copyText(Pool& pool, std::span<const std::uint8_t> bytes, PoolText& text);

}  // namespace qel
