#include "script/machine.h"

#include "movie/movie.h"

namespace qel {

Result runScripts(Movie& movie, ScriptRun run) {
    StateWord& state = movie.state;
    answer(movie, LoadCode::again);
    if (state.restartRequested) {
        state.restartRequested = false;
        state.enter(Phase::load, LoadStep::rewind);
    } else if (state.stopRequested) {
        state.phase = Phase::finish;
    } else if (run == ScriptRun::frameActions) {
        state.enter(Phase::pace, PaceStep::wait);
    } else {
        state.enter(Phase::play, state.rootStopped ? PlayStep::stoppedRoot : PlayStep::nextFrame);
    }
    return Result::done;
}

}  // namespace qel
