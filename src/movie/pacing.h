// When frames are shown: at their pace, or, where content allows frames to be dropped, at a fixed rate.
#pragma once

#include "movie/result.h"

namespace qel {

struct Movie;

// The duration of the frame with this 1-based index, milliseconds; 0 before the first.
std::uint32_t frameDuration(const Movie& movie, std::uint32_t frameIndex);

// Decides about the current frame: waits, begins to draw it, or drops it. Leaves the next status.
Result paceFrame(Movie& movie);

// At the end of the timeline: waits for the last frame's time, then finishes or starts over. Leaves the next status.
Result finishPass(Movie& movie);

}  // namespace qel
