#include "playing_movie.h"

#include <stdexcept>
#include <string>

#include "measure.h"

namespace qel::bench {
namespace {

constexpr const char* contentName = "movie";

// The budget and the time slice are more than any movie takes. A reading of the clock takes the least virtual time, so
// that a frame of many objects is not late.
constexpr PlayerOptions playerOptions{.budget = 64'000'000, .timeSlice = 10'000};
constexpr VirtualTime virtualTime{.tickCostUs = 1};

}  // namespace

PlayingMovie::PlayingMovie(author::Bytes content)
    : platform_(virtualTime), session_(platform_, {.player = playerOptions}) {
    platform_.provideContent(contentName, std::move(content));
    if (session_.open(contentName) != OpenResult::opened) throw std::runtime_error("the movie cannot be opened");
}

std::chrono::nanoseconds PlayingMovie::playFrame() {
    const std::uint64_t before = session_.framesPresented();
    std::chrono::nanoseconds cost{};
    while (session_.playing() && platform_.timerDueUs() && session_.framesPresented() == before) {
        platform_.jumpTo(*platform_.timerDueUs());
        cost += timed([&] { session_.timerFired(); });
    }
    if (session_.ending().kind == Ending::Kind::aborted)
        throw std::runtime_error("playback was aborted, reason " + std::to_string(session_.ending().reason));
    if (session_.framesPresented() != before + 1) throw std::runtime_error("the movie presents no frame");
    return cost;
}

std::size_t PlayingMovie::frameIndex(std::size_t framesOfPass) const {
    return (session_.framesPresented() - 1) % framesOfPass;
}

}  // namespace qel::bench
