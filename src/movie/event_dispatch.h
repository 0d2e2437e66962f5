// The dispatch phase of a cycle: the keys that came in, the commands that wait for them or for the frame, and the frame
// loop.
#pragma once

#include <cstdint>

#include "movie/result.h"

namespace qel {

struct Movie;

// Runs what waits for the frame, then takes the queued keys until one is consumed. The cancel key ends a movie that
// does not loop. Leaves the next status.
Result dispatchEvents(Movie& movie);

// Keys that came in behind the dispatch: each is offered to the buttons, and taken only where one consumes it.
Result offerQueuedKeys(Movie& movie);

}  // namespace qel
