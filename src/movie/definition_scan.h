// The definition scan: walks the records in front of play without reading their bodies, and registers what they define.
#pragma once

#include "movie/result.h"

namespace qel {

struct Movie;

// Looks at the record at the movie's reader and asks for the next one. At the end record it requests the frame buffer.
Result scanDefinition(Movie& movie);

// Tells the host what the content needs, by the status that leads to its first event.
Result requestFrameBuffer(Movie& movie);

}  // namespace qel
