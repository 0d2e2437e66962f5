// Clip instances: making them, their names, their key frames, and the code that waits for their events.
#pragma once

#include "movie/display_object.h"
#include "movie/result.h"

namespace qel {

struct Movie;

// What a placement may give to a clip.
struct ClipArguments {
    PoolText name;  // empty: the movie numbers the clip
    ClipHandlers handlers;
};

// Makes an instance of a sprite, to be put on a list of `owner` or to be its look. `nothing`: clips are nested too
// deep.
Result makeClip(Movie& movie, DisplayObject* owner, Sprite& sprite, ClipArguments* arguments, DisplayObject*& made);

enum class ClipEvent : std::uint8_t { load, unload, frame };

// Queues the code that waits for an event, with the clip as its target.
Result queueClipEvent(Movie& movie, ClipInstance& clip, ClipEvent event);

// The last key frame of the clip's table that is not behind `frame`; null: there is none.
const ClipKeyFrame* keyFrameBefore(const ClipInstance& clip, std::uint16_t frame);

}  // namespace qel
