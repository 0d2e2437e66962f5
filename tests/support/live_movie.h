// A movie in the middle of its playback: stepped piece by piece, its engine within reach.
#pragma once

#include "movie/movie.h"
#include "support/recorder.h"

namespace qel::test {

class LiveMovie {
  public:
    // Every step does one piece of work.
    explicit LiveMovie(const Bytes& content, PlayOptions options = {});
    ~LiveMovie() { session_.end(); }

    // Goes on until `count` frames have been presented in all, or playback ends.
    void playFrames(std::size_t count);
    // Goes on until the engine is about to do its work in a phase; false when playback ends first.
    bool playUntil(Phase phase);
    void step();

    bool playing() const { return session_.playing(); }
    Session& session() { return session_; }
    Movie& movie() { return *session_.context().player->movie; }
    const Playback& seen() const { return seen_; }
    const Image& screen() const { return seen_.frames.back(); }

  private:
    Playback seen_;
    HeadlessPlatform platform_;
    Recorder recorder_;
    Session session_;
};

}  // namespace qel::test
