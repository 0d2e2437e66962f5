#include "support/live_movie.h"

namespace qel::test {
namespace {

SessionOptions inSmallSteps(SessionOptions options) {
    options.player.timeSlice = 0;
    return options;
}

}  // namespace

LiveMovie::LiveMovie(const Bytes& content, PlayOptions options)
    : recorder_(seen_, platform_, options.keepFrames), session_(platform_, inSmallSteps(options.session), &recorder_) {
    platform_.provideContent("content", content);
    seen_.opened = session_.open("content");
}

void LiveMovie::step() {
    if (platform_.timerDueUs()) platform_.jumpTo(*platform_.timerDueUs());
    session_.timerFired();
    seen_.ending = session_.ending();
}

void LiveMovie::playFrames(std::size_t count) {
    while (playing() && seen_.frameTimesMs.size() < count) step();
}

bool LiveMovie::playUntil(Phase phase) {
    while (playing() && movie().state.phase != phase) step();
    return playing();
}

}  // namespace qel::test
