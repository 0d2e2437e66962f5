// The script machine's doors to the timeline and to the movie's life.
#pragma once

#include <cstdint>
#include <span>

#include "movie/result.h"

namespace qel {

struct ClipInstance;
struct Movie;

// Gets the machine ready, once. outOfMemory: the movie cannot be made.
Result initScripts(Movie& movie);

// Returns the scripts to their beginning: a new pass of the movie knows nothing of the one before.
Result resetScripts(Movie& movie);

// Puts action code behind what is queued already; the bytes are copied. `target`: the clip it acts on, null for the
// root timeline.
Result queueActionList(Movie& movie, std::span<const std::uint8_t> code, ClipInstance* target);

// Which run of a cycle: behind the frame that was read, or behind the dispatch of keys.
enum class ScriptRun { frameActions, queuedActions };

// Runs everything that is queued and hands control back to the timeline by setting the movie's state: to pacing after
// the frame's actions, to the next frame after the queued ones; to finishing when a stop is requested, to the rewind
// when a restart is. Leaves the next status.
Result runScripts(Movie& movie, ScriptRun run);

}  // namespace qel
