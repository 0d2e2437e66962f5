// A frame cache: the items of a key frame, kept so that a goto can play the frame again without reading it.
#pragma once

#include "movie/character.h"
#include "movie/content_reader.h"

namespace qel {

struct FrameCache : Character {
    std::uint16_t frameNumber = 0;  // 0-based
    std::uint32_t itemsOffset = 0;  // of the first item in the content
    PoolArray<std::uint8_t> items;
    std::uint32_t filled = 0;  // bytes of the items that are there
};

// What stands in front of a key frame's items: u16 identifier, u16 frame number.
inline constexpr std::uint32_t frameCacheHead = 4;

// Reads the head of a key frame's body of `bodyLength` bytes, which lies at `bodyOffset` of the content; the reader is
// left on the items.
Result beginFrameCache(ContentReader& body, std::uint32_t bodyLength, std::uint32_t bodyOffset, Pool& pool,
                       PoolPtr<FrameCache>& cache);

// Takes as many of the items' bytes as `reader` holds. `done` when they are complete, `nothing` when more are due.
Result continueFrameCache(FrameCache& cache, ContentReader& reader);

}  // namespace qel
