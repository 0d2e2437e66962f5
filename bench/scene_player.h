// Plays the movie of a scene and takes the time of each frame.
#pragma once

#include <chrono>
#include <cstdint>
#include <span>

#include "playing_movie.h"

namespace qel::bench {

class ScenePlayer {
  public:
    // A movie of sceneMovieFrames frames. Throws std::runtime_error when it cannot be opened.
    explicit ScenePlayer(author::Bytes movie);

    // Throws std::runtime_error when the movie does not play, or ends.
    std::chrono::nanoseconds playFrame();

    // What the last frame looks like: RGB565, rows without gaps.
    std::span<const std::uint16_t> picture() const;
    std::size_t frameIndex() const;  // which of the movie's frames that is

  private:
    PlayingMovie playing_;
};

}  // namespace qel::bench
