#include "movie/pacing.h"

#include <algorithm>

#include "format/integers.h"
#include "movie/buttons.h"
#include "movie/drawing.h"
#include "movie/movie.h"
#include "movie/sounds.h"
#include "player/engine_services.h"

namespace qel {
namespace {

enum class Verdict { draw, wait, drop };

// Frames are shown after their predecessors' time, a little early rather than late.
Verdict paceNormally(Movie& movie, std::uint32_t duration) {
    constexpr std::uint32_t mostEarly = 10;  // milliseconds
    const std::uint32_t due = movie.pacing.presented - std::min(duration / 3, mostEarly) + duration;
    const std::int32_t left = tickDifference(due, tickCount(*movie.player));
    if (left <= 0) return Verdict::draw;
    answerWait(movie, static_cast<std::uint32_t>(left));
    return Verdict::wait;
}

bool lists(const PoolArray<std::uint16_t>& keyFrames, std::uint32_t frame) {
    return std::binary_search(keyFrames.begin(), keyFrames.end(), frame);
}

// Whether the current frame is a key frame of the movie or of any sprite that is shown.
bool isAlwaysShown(const Movie& movie) {
    if (lists(movie.keyFrames, movie.frameIndex)) return true;
    for (DisplayObject* object = movie.root.first; object; object = nextInDrawingOrder(object)) {
        const ClipInstance* clip = asClip(object);
        if (clip && lists(clip->sprite->keyFrames, movie.frameIndex)) return true;
    }
    return false;
}

// Deadlines follow one another at the frame rate. A frame that is too late is passed over, unless it is one of those
// that are always shown.
Verdict paceAtFixedRate(Movie& movie, std::uint32_t duration) {
    constexpr std::uint32_t mostSlack = 200;  // milliseconds
    Pacing& pacing = movie.pacing;
    const std::uint32_t now = tickCount(*movie.player);
    if (pacing.resynchronise) {
        pacing.resynchronise = false;
        pacing.deadline = now + duration;
        return Verdict::draw;
    }
    if (pacing.firstFrame) {  // of a later pass: shown at once, and the deadlines go on
        pacing.deadline += duration;
        return Verdict::draw;
    }
    const std::uint32_t slack = std::min(duration / 3, mostSlack);
    const std::int32_t left = tickDifference(pacing.deadline - slack, now);
    if (left > 0) {
        answerWait(movie, static_cast<std::uint32_t>(left));
        return Verdict::wait;
    }
    pacing.deadline += duration;
    if (tickDifference(now, pacing.deadline + slack) <= 0) return Verdict::draw;
    if (isAlwaysShown(movie)) return Verdict::draw;
    pacing.frameStart = now;
    return Verdict::drop;
}

Verdict pace(Movie& movie) {
    if (movie.pacing.draining) return Verdict::draw;
    const std::uint32_t duration = frameDuration(movie, movie.frameIndex);
    if (movie.header.dropFrames) return paceAtFixedRate(movie, duration);
    if (movie.state.stopRequested || movie.pacing.firstFrame) return Verdict::draw;
    return paceNormally(movie, duration);
}

// The end, with what the content asks its host for.
void answerFinished(Movie& movie) {
    const EndRequest& request = movie.endRequest;
    answer(movie, LoadCode::finished);
    if (!request.number.empty()) {
        answer(movie, LoadCode::finishedWithNumber);
        movie.loadStatus.text = request.number.begin();
    }
    if (!request.address.empty()) {
        answer(movie, LoadCode::finishedWithAddress);
        movie.loadStatus.text = request.address.begin();
    }
}

}  // namespace

std::uint32_t frameDuration(const Movie& movie, std::uint32_t frameIndex) {
    const MovieHeader& header = movie.header;
    if (frameIndex == 0) return 0;
    if (header.frameDuration != 0) return header.frameDuration;
    return frameIndex <= header.frameDurations.size() ? header.frameDurations[frameIndex - 1] : 0;
}

Result paceFrame(Movie& movie) {
    answer(movie, LoadCode::again);
    if (std::exchange(movie.state.buttonChangePending, false)) {
        const Result focused = focusCharacter(movie, movie.refocusId);
        if (failed(focused)) return focused;
    }
    if (movie.state.restartRequested) {
        movie.state.enter(Phase::load, LoadStep::rewind);
        return Result::done;
    }
    switch (pace(movie)) {
        case Verdict::wait: break;
        case Verdict::draw: return beginDrawing(movie);
        case Verdict::drop: movie.state.phase = Phase::dispatch; break;
    }
    return Result::done;
}

Result finishPass(Movie& movie) {
    const std::uint32_t duration = frameDuration(movie, movie.frameIndex);
    if (duration != 0 && !movie.pacing.draining) {
        const std::uint32_t due = movie.pacing.frameStart + duration;
        const std::int32_t left = tickDifference(due, tickCount(*movie.player));
        if (left > 0) {
            answerWait(movie, static_cast<std::uint32_t>(left));
            return Result::done;
        }
    }
    stopSounds(movie);
    const bool again = movie.state.loop || movie.state.restartRequested;
    if (again && !movie.state.stopRequested) {
        movie.state.enter(Phase::load, LoadStep::rewind);
        answer(movie, LoadCode::loopBack);
    } else {
        answerFinished(movie);
    }
    return Result::done;
}

}  // namespace qel
