#include "script/machine.h"

#include "movie/drawing.h"
#include "movie/event_dispatch.h"
#include "movie/movie.h"
#include "player/engine_services.h"
#include "script/calls.h"
#include "script/clip_paths.h"
#include "script/interpreter.h"
#include "script/list_queue.h"
#include "script/scope.h"
#include "script/script_state.h"

namespace qel {
namespace {

// Where the cycle goes on behind a run.
void handBack(StateWord& state, ScriptRun run) {
    if (state.stopRequested)
        state.phase = Phase::finish;
    else if (run == ScriptRun::frameActions)
        state.enter(Phase::pace, PaceStep::wait);
    else
        state.enter(Phase::play, state.rootStopped ? PlayStep::stoppedRoot : PlayStep::nextFrame);
}

Result outcomeOf(const ScriptContext& scripts) {
    if (failed(scripts.failure)) return scripts.failure;
    return scripts.memory.exhausted ? Result::outOfMemory : Result::done;
}

// What every movie's root begins with, and the clock and the random numbers of a beginning.
Result beginScripts(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    const auto define = [&](std::string_view name, Value value) {
        storeVariable(movie, scripts.variables, makeName(scripts.memory, name), std::move(value));
    };
    define("Infinity", Value::constant(ValueType::infinity));
    define("NaN", Value::constant(ValueType::notANumber));
    define("$version", Value::text(scripts.memory, "WIN32 1,52,3"));
    scripts.startTime = tickCount(*movie.player);
    scripts.random = seededBy(scripts.startTime);
    return outcomeOf(scripts);
}

// The list has ended: what it leaves on the stack, and what goes with it.
void finishList(Movie& movie, ActionList& list) {
    ScriptContext& scripts = movie.scripts;
    if (list.kind == ListKind::constructor) push(movie, list.thisObject.copy());
    const bool calls = list.kind == ListKind::call || list.kind == ListKind::method;
    if (calls && !scripts.returned) push(movie, {});
    if (list.kind != ListKind::code && list.function) list.function->locals.clear();
    scripts.returned = false;
}

// Runs the lists of the current level until they have ended or a call has opened another.
void runLevel(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    ActionLevel& level = scripts.levels[scripts.level - 1];
    while (level.current < level.count) {
        ActionList& list = *level.lists[level.current];
        scripts.target = list.target;
        scripts.targetSaved = false;
        const bool gone = list.target.isGone();
        if (!gone && !runList(movie, list)) return;
        if (failed(outcomeOf(scripts))) return;
        finishList(movie, list);
        ++level.current;
    }
    emptyLevel(level);
    --scripts.level;
}

Result runQueue(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    scripts.memory.actionsLeft = scripts.actionLimit;
    scripts.level = 1;
    Result result = Result::done;
    while (scripts.level != 0 && !failed(result)) {
        runLevel(movie);
        result = outcomeOf(scripts);
    }
    if (failed(result)) discardLists(scripts);
    scripts.memory.actionsLeft = scripts.actionLimit;  // conversions outside of runs are work as well
    scripts.stack.clear();
    scripts.target = scripts.savedTarget = {};
    return result;
}

// Whether anything waits to run.
bool isIdle(const ScriptContext& scripts) { return scripts.levels[0].count == 0; }

Result runAndDraw(Movie& movie, ScriptRun run) {
    ScriptContext& scripts = movie.scripts;
    scripts.frameRun = run == ScriptRun::frameActions;
    scripts.redraw = false;
    const Result result = isIdle(scripts) ? outcomeOf(scripts) : runQueue(movie);
    const bool shows = !failed(result) && run == ScriptRun::queuedActions && scripts.redraw;
    return shows ? drawNow(movie) : result;
}

}  // namespace

Result initScripts(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    scripts.memory = {.charged = &movie.pool, .uncharged = &movie.heap, .names = &scripts.nameTable};
    scripts.memory.actionsLeft = scripts.actionLimit;
    scripts.objects.memory = &scripts.memory;
    scripts.lengthName = makeName(scripts.memory, "length");
    scripts.valueName = makeName(scripts.memory, "value");
    const auto make = [&](ScriptObject& object, ObjectClass kind, std::string_view name) {
        object.kind = kind;
        object.className = makeText(scripts.memory, name);
    };
    make(scripts.math, ObjectClass::math, "Math");
    make(scripts.string, ObjectClass::string, "String");
    make(scripts.number, ObjectClass::number, "Number");
    make(scripts.key, ObjectClass::key, "Key");
    constexpr std::uint32_t firstStack = 128;
    if (!scripts.stack.reserve(firstStack) || !reserveObjects(scripts.objects)) return Result::outOfMemory;
    return beginScripts(movie);
}

Result resetScripts(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    forgetEverything(scripts);
    scripts.nextButtonKey = scripts.previousButtonKey = 0;
    return beginScripts(movie);
}

Result queueActionList(Movie& movie, std::span<const std::uint8_t> code, ClipInstance* target) {
    if (code.empty()) return Result::done;
    ClipAnchor* anchor = target ? anchorOf(movie, *target) : nullptr;
    if (target && !anchor) return Result::outOfMemory;
    ScriptContext& scripts = movie.scripts;
    ActionLevel& level = scripts.levels[scripts.level == 0 ? 0 : scripts.level - 1];
    addList(movie, level, shareCode(movie, code), CodeOwner::list, Target(anchor));
    return outcomeOf(scripts);
}

Result runScripts(Movie& movie, ScriptRun run) {
    StateWord& state = movie.state;
    answer(movie, LoadCode::again);
    if (state.restartRequested) {
        discardLists(movie.scripts);
        state.enter(Phase::load, LoadStep::rewind);
        return Result::done;
    }
    if (!state.stopRequested && run == ScriptRun::queuedActions) {
        const Result offered = offerQueuedKeys(movie);
        if (failed(offered) || movie.loadStatus.code == LoadCode::finished) return offered;
    }
    const Result ran = state.stopRequested ? Result::done : runAndDraw(movie, run);
    if (failed(ran)) return ran;
    clearList(movie.waiting);
    handBack(state, run);
    return Result::done;
}

}  // namespace qel
