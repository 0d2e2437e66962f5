// The dispatch phase of a cycle: the keys that came in.
#pragma once

#include "movie/result.h"

namespace qel {

struct Movie;

// Takes every queued key. The cancel key ends a movie that does not loop. Leaves the next status.
Result dispatchEvents(Movie& movie);

}  // namespace qel
