// What scripts measure on clips.
#pragma once

#include "format/geometry.h"
#include "script/clip_object.h"

namespace qel {

// The box around a clip on the screen, or around everything for the root; maxima inclusive.
Rect boxOf(Movie& movie, const Target& target);

Value getBounds(Movie& movie, const Target& target, Arguments arguments);
Value hitTest(Movie& movie, const Target& target, Arguments arguments);

// Adds a clip's place to the properties "x" and "y" of an object, or takes it off.
void moveCoordinates(Movie& movie, const Target& target, Arguments arguments, int direction);

}  // namespace qel
