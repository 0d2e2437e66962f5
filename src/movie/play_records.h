// Reading the main timeline: the records up to and including the next frame.
#pragma once

#include "movie/result.h"

namespace qel {

struct Movie;

// Goes on reading records. Leaves the next status: more bytes, or the frame's actions once a frame was played, or the
// end.
Result playRecords(Movie& movie);

}  // namespace qel
