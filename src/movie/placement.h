// Changing a display list: placing characters on it, changing and removing its objects. What has to be drawn again is
// found when the frame is drawn; only what leaves the screen is noted at once.
#pragma once

#include "movie/clips.h"
#include "movie/redraw_region.h"

namespace qel {

struct Movie;

// The root timeline or that of a clip: what frame items act on.
struct Timeline {
    DisplayList& list;
    DisplayList& kept;
    PlacementNumber& nextPlacement;
    ClipInstance* clip = nullptr;  // null for the root
    bool bounded = false;          // its frames end where the cycle's share of work is used up
};
Timeline rootTimeline(Movie& movie);
Timeline clipTimeline(ClipInstance& clip, bool bounded = true);

struct Placement {
    std::uint16_t id = noCharacter;
    std::uint8_t depth = 0;  // position
    std::uint32_t placeKey = DisplayObject::noPlaceKey;
    ClipArguments* arguments = nullptr;  // for a clip; null: none
};

// Puts an instance of a character at a position; `placed` gets it. A clip on the kept list with the same placement key
// is found again and comes back as it is. `nothing`: characters of kinds that are never shown, identifiers that nothing
// defines, and clips that nest too deep place nothing. outOfMemory also when the character cannot be decoded.
Result placeCharacter(Movie& movie, const Timeline& timeline, const Placement& placement, DisplayObject*& placed);

// Frees the object at a position. The code that waits for a clip's removal is queued.
Result removeObject(Movie& movie, const Timeline& timeline, std::uint8_t depth);

void setMatrix(DisplayObject& object, const Matrix& matrix);
void setColours(DisplayObject& object, const ColourTransform& colours);
void setAlpha(DisplayObject& object, std::uint8_t alpha);
void setRatio(DisplayObject& object, std::uint16_t ratio);  // morphs only; others stay as they are

// Notes that the screen shows an object and what is below it no more, and what has to be drawn again for that.
void hideObject(Movie& movie, DisplayObject& object);

// Frees an object that is on no list, at once or, where action code waits to run on it, behind the run.
void letGo(Movie& movie, DisplayObject* object);

// Empties a list: clips go to the kept list, also those that are the looks of buttons; everything else is freed.
void emptyIntoKept(Movie& movie, const Timeline& timeline);

// Frees what no frame has found again.
void dropKept(Movie& movie, const Timeline& timeline);

}  // namespace qel
