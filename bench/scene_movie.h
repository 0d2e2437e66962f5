// A scene as a movie: each shape one character, each placement one display object, all in the first frame.
#pragma once

#include "author/movie_writer.h"
#include "bench/scene.h"

namespace qel::bench {

author::Bytes sceneMovie(const Scene& scene);

}  // namespace qel::bench
