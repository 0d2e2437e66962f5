// The loading side of the feed: from the first bytes to the start of play, and back to it when the movie starts over.
#pragma once

#include "movie/result.h"

namespace qel {

struct Movie;

// One step of the phase the movie is in. Each leaves the next status; a failure is answered by its result.
Result sniffContent(Movie& movie);   // magic, expansion
Result reopenContent(Movie& movie);  // the expanded content is read from its start
Result loadMovie(Movie& movie);      // headers, leading records, definitions, start of play, rewind

}  // namespace qel
