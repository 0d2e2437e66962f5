// Drawing a frame: the changed areas are cleared to the background, and every object that reaches into them is drawn
// again, from the bottom to the top, one object a feed so that a long redraw can be interrupted.
#pragma once

#include <cstdint>

#include "movie/result.h"

namespace qel {

struct Movie;

// How often a cycle draws between its frames; what changes after that is seen with the next frame.
inline constexpr std::uint32_t immediateFramesPerCycle = 256;

// Finds what has changed, clears it, and enters the drawing step.
Result beginDrawing(Movie& movie);

// Draws the next object; enters the presenting step when none is left. outOfMemory: an object could not be drawn.
Result drawNextObject(Movie& movie);

// Hands the finished frame to the host and enters the dispatch phase.
Result presentDrawnFrame(Movie& movie);

// Draws and hands over what has changed at once, outside the frames' rhythm: their clock goes on as it was.
Result drawNow(Movie& movie);

}  // namespace qel
