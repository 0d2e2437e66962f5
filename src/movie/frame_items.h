// Frame items applied: what a frame does to its timeline.
#pragma once

#include "movie/placement.h"

namespace qel {

// Applies the items in `items` to a timeline. `offset` is where they lie: of the content for the root, of the sprite's
// timeline for a clip; it makes the identities of placements. badContent: an item breaks off.
Result applyFrameItems(Movie& movie, const Timeline& timeline, ContentReader items, std::uint32_t offset);

}  // namespace qel
