#include "script/machine.h"

#include "movie/event_dispatch.h"
#include "movie/movie.h"

namespace qel {
namespace {

// Where the cycle goes on behind a run.
void handBack(StateWord& state, ScriptRun run) {
    if (run == ScriptRun::frameActions)
        state.enter(Phase::pace, PaceStep::wait);
    else
        state.enter(Phase::play, state.rootStopped ? PlayStep::stoppedRoot : PlayStep::nextFrame);
}

}  // namespace

Result queueActionList(Movie&, std::span<const std::uint8_t>, ClipInstance*) { return Result::done; }

Result runScripts(Movie& movie, ScriptRun run) {
    StateWord& state = movie.state;
    answer(movie, LoadCode::again);
    if (state.restartRequested) {
        state.enter(Phase::load, LoadStep::rewind);
        return Result::done;
    }
    if (!state.stopRequested && run == ScriptRun::queuedActions) {
        const Result offered = offerQueuedKeys(movie);
        if (failed(offered) || movie.loadStatus.code == LoadCode::finished) return offered;
    }
    clearList(movie.waiting);
    if (state.stopRequested)
        state.phase = Phase::finish;
    else
        handBack(state, run);
    return Result::done;
}

}  // namespace qel
