// A movie that plays on the virtual clock, frame by frame, with the time that each frame takes.
#pragma once

#include <chrono>

#include "author/byte_writer.h"
#include "host/headless_platform.h"
#include "host/session.h"
#include "movie/movie.h"

namespace qel::bench {

// A frame's time is everything between one presented frame and the next: reading its records, placing, scripts,
// drawing. The player goes on through all of it in one step, as it does on a device, so that taking the time costs
// nothing; handing the frame over costs nothing either, because nobody looks at it. Movies play in a loop.
class PlayingMovie {
  public:
    // Throws std::runtime_error when the movie cannot be opened.
    explicit PlayingMovie(author::Bytes content);

    // Throws std::runtime_error when the movie does not play, or ends.
    std::chrono::nanoseconds playFrame();

    // Of the last frame, where a pass of the movie has so many of them.
    std::size_t frameIndex(std::size_t framesOfPass) const;

    const HostContext& context() const { return session_.context(); }
    Movie& movie() { return *context().player->movie; }

  private:
    HeadlessPlatform platform_;
    Session session_;
};

}  // namespace qel::bench
