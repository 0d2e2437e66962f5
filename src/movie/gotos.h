// Jumps on timelines: the root goes to a key frame by its frame cache or to any frame, a clip to any frame of its own.
#pragma once

#include "movie/display_object.h"
#include "movie/result.h"

namespace qel {

struct Movie;

// Sends the root timeline to a key frame: the cycle goes on with playing it from its cache, and the dispatch that asked
// for it ends at once. `nothing`: the identifier is that of no key frame.
Result gotoKeyFrame(Movie& movie, std::uint16_t cacheId);

// Plays the key frame that gotoKeyFrame has chosen.
Result playGotoFrame(Movie& movie);

// Brings the root timeline to a frame (0-based) at once: its display list is built up from the last key frame that is
// not behind it. Only the actions of that frame are queued. Frames that the movie
// does not have are ignored, and so are gotos in a cycle that has used up its share of work.
Result gotoRootFrame(Movie& movie, std::uint16_t frame);

// Brings a clip to a frame (0-based, below its frame count) at once, likewise.
Result gotoClipFrame(Movie& movie, ClipInstance& clip, std::uint16_t frame);

}  // namespace qel
