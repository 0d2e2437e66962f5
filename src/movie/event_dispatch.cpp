#include "movie/event_dispatch.h"

#include "format/commands.h"
#include "format/key_codes.h"
#include "movie/commands.h"
#include "movie/drawing.h"
#include "movie/gotos.h"
#include "movie/key_dispatch.h"
#include "movie/movie.h"

namespace qel {
namespace {

// How the dispatch goes on behind a step of it.
enum class Next : std::uint8_t { go, leave };

// A goto takes over: its state is the next one.
Next afterCommand(Movie& movie) { return std::exchange(movie.state.gotoPerformed, false) ? Next::leave : Next::go; }

bool endsMovie(const Movie& movie, std::uint8_t key) {
    return key == static_cast<std::uint8_t>(KeyCode::cancel) && !movie.state.loop;
}

// Runs the commands of a list that wait for one of two event codes; `matched` is set where there are any.
Result runMatching(Movie& movie, const CommandList& list, std::uint8_t event, std::uint8_t otherEvent, bool& matched,
                   Next& next) {
    for (const Command& command : list) {
        const std::uint8_t waitsFor = command.body[0];
        if (waitsFor != event && waitsFor != otherEvent) continue;
        matched = true;
        const Result run = runCommand(movie, command);
        if (failed(run)) return run;
        next = afterCommand(movie);
        if (next == Next::leave) break;
    }
    return Result::done;
}

// The global commands first, then the frame's.
Result runBoth(Movie& movie, std::uint8_t event, std::uint8_t otherEvent, bool& matched, Next& next) {
    const Result run = runMatching(movie, movie.globalCommands, event, otherEvent, matched, next);
    if (failed(run) || next == Next::leave) return run;
    return runMatching(movie, movie.frameCommands, event, otherEvent, matched, next);
}

Result runFrameCommands(Movie& movie, Next& next) {
    constexpr auto everyFrame = static_cast<std::uint8_t>(CommandEvent::everyFrame);
    bool matched = false;
    return runBoth(movie, everyFrame, everyFrame, matched, next);
}

Result runKeyCommands(Movie& movie, std::uint8_t key, Next& next) {
    constexpr auto unhandled = static_cast<std::uint8_t>(CommandEvent::unhandledKey);
    bool matched = false;
    const Result run = runBoth(movie, key, static_cast<std::uint8_t>(CommandEvent::anyKey), matched, next);
    if (failed(run) || next == Next::leave || matched) return run;
    return runBoth(movie, unhandled, unhandled, matched, next);
}

// The focused command button: its own key runs its commands, whatever events they wait for.
Result pressCommandButton(Movie& movie, std::uint8_t key, Next& next) {
    ButtonInstance* focused = movie.buttons.focused;
    if (!focused || focused->button->kind != CharacterKind::commandButton) return Result::done;
    // Its commands may remove it.
    const CharacterHold<CommandButton> button(static_cast<CommandButton*>(focused->button.get()));
    if (button->key != key) return Result::done;
    const Result flashed = flashButton(movie, *focused, ButtonState::over);
    if (failed(flashed)) return flashed;
    for (const Command& command : button->commands) {
        const Result run = runCommand(movie, command);
        if (failed(run)) return run;
        next = afterCommand(movie);
        if (next == Next::leave) break;
    }
    return Result::done;
}

Result dispatchOneKey(Movie& movie, std::uint8_t key, bool& consumed, Next& next) {
    const Result offered = dispatchKey(movie, key, consumed);
    if (failed(offered) || consumed) return offered;
    const Result run = runKeyCommands(movie, key, next);
    if (failed(run) || next == Next::leave) return run;
    return pressCommandButton(movie, key, next);
}

// Takes keys until one is consumed. Leaves the status `finished` where the movie ends.
Result dispatchKeys(Movie& movie, Next& next) {
    for (std::uint8_t key = movie.keys.take(); key != KeyQueue::none; key = movie.keys.take()) {
        if (endsMovie(movie, key)) {
            answer(movie, LoadCode::finished);
            next = Next::leave;
            return Result::done;
        }
        bool consumed = false;
        const Result dispatched = dispatchOneKey(movie, key, consumed, next);
        if (failed(dispatched) || consumed || next == Next::leave) return dispatched;
    }
    return Result::done;
}

// At the end of the loop's last frame: once more from its first key frame, or on to what comes behind the loop.
Result runFrameLoop(Movie& movie) {
    FrameLoop& loop = movie.frameLoop;
    if (movie.frameIndex == 0 || movie.frameIndex - 1 != loop.lastFrame) return Result::done;
    const bool again = loop.count-- != 1;
    if (!again) movie.state.frameLoopActive = false;
    return gotoKeyFrame(movie, again ? loop.firstKeyFrame : loop.afterKeyFrame);
}

bool finishIfStopped(Movie& movie) {
    if (movie.state.stopRequested) movie.state.phase = Phase::finish;
    return movie.state.stopRequested;
}

Result dispatch(Movie& movie, Next& next) {
    if (finishIfStopped(movie)) {
        next = Next::leave;
        return Result::done;
    }
    const bool looping = movie.state.frameLoopActive;
    Result result = movie.state.rootStopped ? Result::done : runFrameCommands(movie, next);
    if (!failed(result) && next == Next::go) result = dispatchKeys(movie, next);
    if (failed(result) || next == Next::leave) return result;
    if (finishIfStopped(movie)) {
        next = Next::leave;
        return Result::done;
    }
    if (!looping || !movie.state.frameLoopActive) return result;
    result = runFrameLoop(movie);
    next = afterCommand(movie);
    return result;
}

}  // namespace

Result dispatchEvents(Movie& movie) {
    answer(movie, LoadCode::again);
    movie.immediateFramesLeft = immediateFramesPerCycle;
    Next next = Next::go;
    const Result dispatched = dispatch(movie, next);
    if (!failed(dispatched) && next == Next::go) movie.state.phase = Phase::queuedActions;
    return dispatched;
}

Result offerQueuedKeys(Movie& movie) {
    for (unsigned i = 0; i < movie.keys.count();) {
        const std::uint8_t key = movie.keys.at(i);
        if (key == KeyQueue::none) break;  // as if the queue ended there
        if (endsMovie(movie, key)) {
            answer(movie, LoadCode::finished);
            return Result::done;
        }
        bool consumed = false;
        const Result offered = dispatchKey(movie, key, consumed);
        if (failed(offered)) return offered;
        if (consumed)
            movie.keys.remove(i);
        else
            ++i;
    }
    return Result::done;
}

}  // namespace qel
