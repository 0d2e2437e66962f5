// What script values are charged to, what a run may still use, and whether either is used up: the first request that
// the budget refuses marks the run as failed, and everything that happens until the run notices is harmless.
#pragma once

#include <cstddef>

#include "movie/pool.h"

namespace qel {

struct NameTable;

struct alignas(16) ScriptMemory {
    Pool* charged = nullptr;    // the movie's budget: what the device's values take
    Pool* uncharged = nullptr;  // what this machine's representation takes
    NameTable* names = nullptr;
    std::uint32_t actionsLeft = 0;  // of the run
    bool exhausted = false;

    // Charges the device's bytes of a value.
    bool take(std::uint32_t bytes) {
        if (chargeOnly(*charged, bytes)) return true;
        exhausted = true;
        return false;
    }
    // The same for what stays until it is given back, come what may.
    void charge(std::uint32_t bytes) {
        if (take(bytes)) return;
        charged->inUse += bytes + blockHeaderCharge;
    }
    // What is charged for a moment and given back.
    void touch(std::uint32_t bytes) {
        if (!hasRoomWithin(*charged, bytes + blockHeaderCharge) && take(bytes)) giveBack(bytes);
    }
    void giveBack(std::uint32_t bytes) { giveBackCharge(*charged, bytes); }

    // Counts work that grows with what an action is given as so many more actions: long texts, many values.
    void spend(std::size_t work) {
        actionsLeft = work < actionsLeft ? actionsLeft - static_cast<std::uint32_t>(work) : 0;
    }
};

// It lies in memory of the host's, which is aligned for any type; values keep their type in the low bits of its
// address.
static_assert(alignof(ScriptMemory) <= alignof(std::max_align_t));

}  // namespace qel
