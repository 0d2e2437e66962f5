// Plays a session on the virtual clock to its end, with keys and a stop at given times.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/headless_platform.h"
#include "host/session.h"

namespace qel {

struct KeyPress {
    std::uint64_t atMs = 0;
    std::uint32_t code = 0;
};

// Times are virtual milliseconds since the start.
struct Schedule {
    std::vector<KeyPress> keys = {};  // in any order; those of one time are handed over as listed
    std::optional<std::uint64_t> stopAtMs = {};
    std::optional<std::uint64_t> endAtMs = {};  // the player is torn down
};

enum class RunEnd : std::uint8_t {
    playbackEnded,  // Session::ending says how
    timeReached,    // Schedule::endAtMs
    idle,           // no timer, no key and no stop left: nothing would ever happen again
};

// For a session that was just opened on `platform`. Lets the clock jump from one thing that is due to the next; what is
// due at one time happens in the order key, stop, end, timer. No player is left when it returns.
RunEnd runToEnd(Session& session, HeadlessPlatform& platform, Schedule schedule);

}  // namespace qel
