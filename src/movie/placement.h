// Changing a display list: placing characters on it, moving and removing its objects. Every change notes what has to be
// drawn again.
#pragma once

#include "movie/display_object.h"
#include "movie/redraw_region.h"
#include "movie/result.h"

namespace qel {

struct Movie;

// The root timeline or that of a clip: what frame items act on.
struct Timeline {
    DisplayList& list;
    DisplayList& kept;
    PlacementNumber& nextPlacement;
    ClipInstance* clip = nullptr;  // null for the root
};
Timeline rootTimeline(Movie& movie);
Timeline clipTimeline(ClipInstance& clip);

// Puts an instance of a character at a position. A clip on the kept list with the same placement key is found again and
// comes back as it is. Characters of kinds that are never shown, and identifiers that nothing defines, place nothing.
// outOfMemory also when the character cannot be decoded.
Result placeCharacter(Movie& movie, const Timeline& timeline, std::uint16_t id, std::uint8_t depth,
                      std::uint32_t placeKey);

// Frees the object at a position.
void removeObject(Movie& movie, const Timeline& timeline, std::uint8_t depth);

// Gives an object a matrix and brings everything below it to its new place.
Result setMatrix(Movie& movie, DisplayObject& object, const Matrix& matrix);

// Computes again where an object and everything below it lies on the screen.
Result transformObject(Movie& movie, DisplayObject& object);

// Empties a list: clips go to the kept list, everything else is freed.
void emptyIntoKept(Movie& movie, const Timeline& timeline);

// Where an object reaches on the screen, with everything below it. Empty when it shows nothing.
Rect boundsOf(const DisplayObject& object);

}  // namespace qel
