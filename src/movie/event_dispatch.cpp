#include "movie/event_dispatch.h"

#include "movie/movie.h"

namespace qel {
namespace {

constexpr std::uint8_t cancelKey = 154;

}  // namespace

Result dispatchEvents(Movie& movie) {
    answer(movie, LoadCode::again);
    if (movie.state.stopRequested) {
        movie.state.phase = Phase::finish;
        return Result::done;
    }
    for (std::uint8_t key = movie.keys.take(); key != KeyQueue::none; key = movie.keys.take()) {
        if (key == cancelKey && !movie.state.loop) {
            answer(movie, LoadCode::finished);
            return Result::done;
        }
    }
    movie.state.phase = Phase::queuedActions;
    return Result::done;
}

}  // namespace qel
