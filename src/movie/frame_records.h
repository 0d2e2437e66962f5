// Frame records as they lie in a timeline: finding them, and what stands in front of their items.
#pragma once

#include "movie/content_reader.h"
#include "movie/sprite.h"

namespace qel {

// Bytes of a frame record's header: the type and a u16 length.
inline constexpr std::uint32_t frameRecordHeader = 3;

struct FrameHead {
    std::uint16_t cacheId = noCharacter;  // noCharacter: an ordinary frame
    std::uint16_t frameNumber = 0;        // 0-based, of a key frame
};

// Reads the head of a frame record's body and moves behind it.
FrameHead readFrameHead(ContentReader& body);

// A frame record of a sprite's timeline; offsets count from the timeline's start.
struct SpriteFrame {
    ContentReader body;
    std::uint32_t start = 0;       // of the record
    std::uint32_t bodyOffset = 0;  // of its body
    std::uint32_t end = 0;         // behind it
    std::uint32_t looked = 0;      // how many records the search has looked at
};

// Finds the frame record at or behind `offset`; other records are passed over. False at the end of the timeline, where
// a record breaks off, and when `most` records were looked at without finding one.
bool findFrame(const Sprite& sprite, std::uint32_t offset, std::uint32_t most, SpriteFrame& frame);

}  // namespace qel
