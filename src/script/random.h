// The device's random numbers.
#pragma once

#include <cstdint>

namespace qel {

struct RandomState {
    std::uint32_t x = 1, y = 2, z = 4, w = 8, k = 0;
};

constexpr RandomState seededBy(std::uint32_t seed) { return {seed | 1, seed | 2, seed | 4, seed | 8, 0}; }

constexpr std::uint32_t nextRandom(RandomState& state) {
    state.x = state.x * 69069 + 1;
    state.y ^= state.y << 13;
    state.y ^= state.y >> 17;
    state.y ^= state.y << 5;
    const std::uint32_t sum = (state.z >> 2) + (state.w >> 3) + (state.k >> 2);
    const std::uint32_t next = state.z + 2 * state.w + state.k;
    state.z = state.w;
    state.w = next;
    state.k = sum >> 30;
    return state.y + next + state.x;
}

}  // namespace qel
