// What an operation of the movie engine answers. Negative results end playback; their numbers are those of LoadCode.
#pragma once

#include <cstdint>

#include "player/load_status.h"

namespace qel {

enum class [[nodiscard]] Result : std::int8_t{
    done = 1,
    nothing = 0,  // there was nothing to do; no failure
    outOfMemory = -1, brokenDefinition = -2, badContent = -3, noTemporaryFile = -4,
};

constexpr bool failed(Result result) { return static_cast<int>(result) < 0; }

// The status that a failure ends playback with.
constexpr LoadCode failureCode(Result result) { return static_cast<LoadCode>(static_cast<int>(result)); }
static_assert(failureCode(Result::badContent) == LoadCode::badContent);

}  // namespace qel
