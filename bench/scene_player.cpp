#include "scene_player.h"

#include <stdexcept>
#include <string>

#include "scene_movie.h"

namespace qel::bench {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr const char* contentName = "scene";

// The budget and the time slice are more than any scene takes. A reading of the clock takes the least virtual time, so
// that a frame of many objects is not late.
constexpr PlayerOptions playerOptions{.budget = 64'000'000, .timeSlice = 10'000};
constexpr VirtualTime virtualTime{.tickCostUs = 1};

}  // namespace

ScenePlayer::ScenePlayer(author::Bytes movie) : platform_(virtualTime), session_(platform_, {.player = playerOptions}) {
    platform_.provideContent(contentName, std::move(movie));
    if (session_.open(contentName) != OpenResult::opened) throw std::runtime_error("the movie cannot be opened");
}

nanoseconds ScenePlayer::playNext() {
    const std::uint64_t before = session_.framesPresented();
    nanoseconds cost{};
    while (session_.playing() && platform_.timerDueUs() && session_.framesPresented() == before) {
        platform_.jumpTo(*platform_.timerDueUs());
        const auto begin = steady_clock::now();
        session_.timerFired();
        cost += steady_clock::now() - begin;
    }
    if (session_.ending().kind == Ending::Kind::aborted)
        throw std::runtime_error("playback was aborted, reason " + std::to_string(session_.ending().reason));
    if (session_.framesPresented() != before + 1) throw std::runtime_error("the movie presents no frame");
    return cost;
}

nanoseconds ScenePlayer::playFrame() {
    const nanoseconds cost = playNext();
    return frameIndex() == 0 ? playNext() : cost;  // a pass begins with work that is not a frame's
}

std::span<const std::uint16_t> ScenePlayer::picture() const {
    const HostContext& context = session_.context();
    return {context.frameBuffer, std::size_t{context.frameWidth} * context.frameHeight};
}

std::size_t ScenePlayer::frameIndex() const { return (session_.framesPresented() - 1) % sceneMovieFrames; }

}  // namespace qel::bench
