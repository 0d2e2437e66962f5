// What script values are charged to, and whether it is used up: the first request that the budget refuses marks the run
// as failed, and everything that happens until the run notices is harmless.
#pragma once

#include "movie/pool.h"

namespace qel {

struct alignas(16) ScriptMemory {
    Pool* charged = nullptr;    // the movie's budget: what the device's values take
    Pool* uncharged = nullptr;  // what this machine's representation takes
    bool exhausted = false;

    // Charges the device's bytes of a value.
    bool take(std::uint32_t bytes) {
        if (!chargeOnly(*charged, bytes)) exhausted = true;
        return !exhausted;
    }
    void giveBack(std::uint32_t bytes) { giveBackCharge(*charged, bytes); }
};

}  // namespace qel
