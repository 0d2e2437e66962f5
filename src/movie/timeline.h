// Timelines at work: frame records applied to their display lists, and clips stepped from frame to frame.
#pragma once

#include "movie/content_reader.h"
#include "movie/placement.h"

namespace qel {

struct Movie;

// The head of a frame record's body.
struct FrameHead {
    std::uint16_t cacheId = noCharacter;  // noCharacter: an ordinary frame
    std::uint16_t frameNumber = 0;        // 0-based, of a cached frame
};
FrameHead readFrameHead(ContentReader& body);

// Applies the items in `items` to a timeline. `offset` is where they lie: of the content for the root, of the sprite's
// timeline for a clip; it makes the identities of placements. badContent: an item breaks off.
Result applyFrameItems(Movie& movie, const Timeline& timeline, ContentReader items, std::uint32_t offset);

// Plays the next frame of the root timeline from the body of its record, which lies at `offset` in the content.
Result playRootFrame(Movie& movie, ContentReader body, std::uint32_t offset);

// Plays the next frame of a clip; at its end the clip wraps to its first frame.
Result stepClip(Movie& movie, ClipInstance& clip);

// Steps every clip that is due, from the bottom of the root list to its top, the nested ones behind their parents.
Result stepClips(Movie& movie);

}  // namespace qel
