// A sprite character: a timeline of its own, kept in memory as the bytes of its frame records.
#pragma once

#include "movie/character.h"
#include "movie/content_reader.h"

namespace qel {

struct Sprite : Character {
    std::uint16_t frameCount = 0;
    std::uint16_t keyFrameCount = 0;   // room in the key frame table of each instance
    PoolArray<std::uint8_t> timeline;  // frame records, back to back
    std::uint32_t filled = 0;          // bytes of the timeline that are there
};

// Where the body of a sprite's record begins: u16 head length (of the whole head, this field included), u16 identifier.
inline constexpr std::uint32_t spriteHeadFields = 4;

// Reads the head, behind the identifier, of a body of `bodyLength` bytes whose head has `headLength`; the rest is the
// timeline.
Result beginSprite(ContentReader head, std::uint32_t headLength, std::uint32_t bodyLength, Pool& pool,
                   PoolPtr<Sprite>& sprite);

// Takes as much of the timeline as `reader` holds. `done` when it is complete, `nothing` when more bytes are due.
Result continueSprite(Sprite& sprite, ContentReader& reader);

}  // namespace qel
