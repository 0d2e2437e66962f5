// Where play begins: the end of loading, and the rewind that brings a movie back there.
#pragma once

#include "movie/result.h"

namespace qel {

struct Movie;

// Reads the trailer blocks and starts the first pass. `badContent`: a block that is announced cannot be read.
Result startPlay(Movie& movie);

// Empties the timeline, forgets every decoded character, and starts a new pass.
Result rewindMovie(Movie& movie);

}  // namespace qel
