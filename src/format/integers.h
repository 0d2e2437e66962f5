// Exact integer arithmetic of the device: results that leave their width wrap, as they do on its processor. Everything
// that can wrap goes through these helpers, in unsigned types, so that no input makes the behaviour undefined.
#pragma once

#include <cstdint>

namespace qel {

constexpr std::int16_t wrap16(std::int64_t value) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint64_t>(value)));
}

constexpr std::int32_t wrap32(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

constexpr std::int32_t add32(std::int32_t a, std::int32_t b) { return wrap32(std::int64_t{a} + b); }
constexpr std::int32_t subtract32(std::int32_t a, std::int32_t b) { return wrap32(std::int64_t{a} - b); }
constexpr std::int32_t multiply32(std::int32_t a, std::int32_t b) { return wrap32(std::int64_t{a} * b); }

// The product of two 16.16 numbers: taken at 64 bits, shifted, then cut to 32.
constexpr std::int32_t multiply16_16(std::int32_t a, std::int32_t b) { return wrap32((std::int64_t{a} * b) >> 16); }

// The distance between two readings of a wrapping millisecond clock: negative when `a` lies before `b`.
constexpr std::int32_t tickDifference(std::uint32_t a, std::uint32_t b) { return static_cast<std::int32_t>(a - b); }

}  // namespace qel
