// Timelines at work: frame records applied to their display lists, and clips stepped from frame to frame.
#pragma once

#include "movie/content_reader.h"
#include "movie/placement.h"

namespace qel {

struct Movie;

// How much of its clips' timelines a movie plays in one cycle: every record and every item that is looked at counts as
// one. Beyond it
// clips stand still. More than any budget of the device lets honest clips do; it ends sprites that place and remove
// themselves without end.
inline constexpr std::uint32_t workPerCycle = 500'000;

// Counts pieces of work; false when the cycle has used up its share.
bool spendWork(Movie& movie, std::uint32_t amount = 1);

// A frame record of the root timeline.
struct RootFrame {
    ContentReader body;
    std::uint32_t bodyOffset = 0;  // in the content
};

// Plays the next frame of the root timeline, and a key frame's clips behind it. A key frame is kept as a frame cache.
Result playRootFrame(Movie& movie, const RootFrame& frame);

// Plays a key frame of the root timeline once more.
Result playCachedFrame(Movie& movie, const FrameCache& cache);

// As these, but for the way of a goto: clips that are not found again stay on the kept list, and none is stepped.
Result passRootFrame(Movie& movie, const RootFrame& frame);
Result passCachedFrame(Movie& movie, const FrameCache& cache);

// Steps a clip: queues the code that waits for every frame, and plays the next frame unless the clip is stopped.
Result stepClip(Movie& movie, ClipInstance& clip);

// Plays the next frame of a clip; at its end the clip wraps to its first frame. One that is not bounded plays it
// whatever the cycle has done already.
Result advanceClip(Movie& movie, ClipInstance& clip, bool bounded = true);

// Steps every clip that is due, from the bottom of the root list to its top, the nested ones behind their parents.
Result stepClips(Movie& movie);

// Behind a goto: steps the clips that it has placed and not stepped; those below a clip, or all.
Result stepNewClips(Movie& movie, ClipInstance* below = nullptr);

}  // namespace qel
