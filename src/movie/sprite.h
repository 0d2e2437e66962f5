// A sprite character: a timeline of its own, kept in memory as the bytes of its frame records.
#pragma once

#include <array>

#include "movie/character.h"
#include "movie/content_reader.h"

namespace qel {

// Action code in the timeline that scripts call by its frame.
struct SpriteBlock {
    std::uint16_t id = 0;
    std::uint16_t offset = 0;  // in the timeline
    std::uint16_t length = 0;
};

struct SpriteLabel {
    static constexpr std::size_t longestText = 39;

    std::uint16_t frame = 0;                      // 0-based
    std::array<char, longestText + 1> text = {};  // zero-terminated; what does not fit is cut off
};

struct Sprite : Character {
    std::uint16_t frameCount = 0;
    std::uint16_t keyFrameCount = 0;  // room in the key frame table of each instance
    PoolArray<SpriteBlock> blocks;
    PoolArray<SpriteLabel> labels;
    PoolArray<std::uint16_t> keyFrames;  // frames that are always shown, ascending
    PoolArray<std::uint8_t> timeline;    // frame records, back to back
    std::uint32_t filled = 0;            // bytes of the timeline that are there
};

// Reads the head of a body of `bodyLength` bytes, which must lie whole in `body`; the reader is left on the timeline.
Result beginSprite(ContentReader& body, std::uint32_t bodyLength, Pool& pool, PoolPtr<Sprite>& sprite);

// Takes as much of the timeline as `reader` holds. `done` when it is complete, `nothing` when more bytes are due.
Result continueSprite(Sprite& sprite, ContentReader& reader);

}  // namespace qel
