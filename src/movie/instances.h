// Making display objects of characters.
#pragma once

#include "movie/clips.h"
#include "movie/dictionary.h"

namespace qel {

struct Movie;

// Looks a character up for a placement. Failures are those that a placement ends playback with: outOfMemory also where
// the character cannot be decoded.
Result lookupForPlacement(Movie& movie, std::uint16_t id, CharacterHold<Character>& character);

// Makes the display object of a character that lookupForPlacement gave: `made` is on no list, and `owner` is what it
// will belong to. `nothing`: characters of its kind are never shown, or not there.
Result makeInstance(Movie& movie, DisplayObject* owner, Character& character, std::uint16_t id,
                    ClipArguments* arguments, DisplayObject*& made);

}  // namespace qel
