// A scene as a movie: each of its shapes a shape character, each placement an object of the display list.
#pragma once

#include <cstdint>

#include "author/byte_writer.h"
#include "scene_file.h"

namespace qel::bench {

// What a frame asks of the engine beside drawing everything anew.
enum class Motion : std::uint8_t {
    standing,  // nothing: the objects keep their places, and the engine what it has computed for them
    moving,    // every object is put to its place again, as if it had moved
};

inline constexpr int sceneMovieFrames = 60;  // of every scene movie; the frames of a scene are played in turn

// A "VIS" file of that many frames. Objects of scenes with several frames move in any case. Throws
// std::invalid_argument, with the reason, for a scene that cannot be made a movie.
author::Bytes sceneMovie(const Scene& scene, Motion motion);

}  // namespace qel::bench
