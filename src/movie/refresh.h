// Bringing the display lists up to date: where everything lies on the screen, how it is coloured, and what therefore
// has to be drawn again. Frames only note that something has moved, so that what a goto passes over costs nothing here.
#pragma once

#include "movie/display_object.h"
#include "movie/result.h"

namespace qel {

struct Movie;

// Computes what has changed since the last call and adds the areas that must be drawn again to the movie's changed
// areas. outOfMemory: an object could not be brought to its place.
Result refreshObjects(Movie& movie);

// Where an object reaches on the screen, with everything below it, as of the last refresh. Empty when it shows nothing.
Rect boundsOf(const DisplayObject& object);

}  // namespace qel
