// Plays the movie of a scene and takes the time of each frame.
#pragma once

#include <chrono>
#include <cstdint>
#include <span>

#include "author/byte_writer.h"
#include "host/headless_platform.h"
#include "host/session.h"
#include "scene_file.h"

namespace qel::bench {

// A frame's time is everything between one presented frame and the next: reading its records, placing, drawing. The
// player goes on through all of it in one step, as it does on a device, so that taking the time costs nothing; handing
// the frame over costs nothing either, because nobody looks at it.
class ScenePlayer {
  public:
    // A movie of sceneMovieFrames frames.
    explicit ScenePlayer(author::Bytes movie);

    // Throws std::runtime_error when the movie does not play, or ends.
    std::chrono::nanoseconds playFrame();

    // What the last frame looks like: RGB565, rows without gaps.
    std::span<const std::uint16_t> picture() const;
    std::size_t frameIndex() const;  // which of the movie's frames that is

  private:
    std::chrono::nanoseconds playNext();

    HeadlessPlatform platform_;
    Session session_;
};

}  // namespace qel::bench
