// A movie that uses every record, frame item and command that steers playback, and the keys that set them off. Small,
// so that sweeps can break it in every place.
#pragma once

#include "author/movie_writer.h"
#include "host/headless_run.h"

namespace qel::test {

author::MovieFile controlMovie();
std::vector<KeyPress> controlKeys();

}  // namespace qel::test
