#include "script/timeline_actions.h"

#include <algorithm>

#include "movie/movie.h"
#include "script/clip_paths.h"
#include "script/conversions.h"
#include "script/frame_navigation.h"
#include "script/numbers.h"

namespace qel {
namespace {

std::string_view textOf(ContentReader operands) {
    const std::span<const std::uint8_t> rest = operands.rest();
    const std::string_view text(reinterpret_cast<const char*>(rest.data()), rest.size());
    return text.substr(0, text.find('\0'));
}

void setTarget(Movie& movie, std::string_view path) {
    ScriptContext& scripts = movie.scripts;
    if (path.empty()) {
        if (!scripts.targetSaved) return;
        scripts.target = std::move(scripts.savedTarget);
        scripts.savedTarget = {};
        scripts.targetSaved = false;
        return;
    }
    ClipInstance* clip = resolveTarget(movie, path);
    ClipAnchor* anchor = clip ? anchorOf(movie, *clip) : nullptr;
    if (!anchor) return;
    scripts.savedTarget = scripts.target;
    scripts.target = Target(anchor);
    scripts.targetSaved = true;
}

// Clips that have no such label go to their first frame; they play on where Play follows.
void goToLabel(Movie& movie, std::string_view label, std::span<const std::uint8_t> behind) {
    const Target target = movie.scripts.target;
    const std::int32_t frame = labelFrame(movie, target, label);
    const bool plays = !behind.empty() && Action{behind[0]} == Action::play;
    if (target.clip())
        gotoFrame(movie, target, std::max(frame, 0) + 1.0, plays ? AfterGoto::play : AfterGoto::stop);
    else if (frame >= 0)
        gotoFrame(movie, target, frame + 1.0, AfterGoto::stop);
    stopAllSounds(movie);
}

void goToFrame2(Movie& movie, bool play) {
    const Value value = movie.scripts.stack.pop();
    double frame = 0;
    if (value.is(ValueType::number)) frame = truncated(value.asNumber());
    if (value.is(ValueType::text)) {
        const std::int32_t labelled = labelFrame(movie, Target(), value.asText().view());
        frame = labelled >= 0 ? labelled + 1.0 : truncated(numericValue(value));
    }
    gotoFrame(movie, movie.scripts.target, frame, play ? AfterGoto::play : AfterGoto::stop);
}

}  // namespace

bool performTimelineAction(Movie& movie, Action action, ContentReader operands, std::span<const std::uint8_t> behind) {
    const Target target = movie.scripts.target;
    const double current = currentFrameOf(movie, target);
    switch (action) {
        case Action::play:
        case Action::stop: setStopped(movie, target, action == Action::stop); return true;
        case Action::stopSounds: stopAllSounds(movie); return true;
        case Action::nextFrame:
            if (current != frameCountOf(movie, target)) gotoFrame(movie, target, current + 1, AfterGoto::stop);
            return true;
        case Action::prevFrame: gotoFrame(movie, target, current - 1, AfterGoto::stop); return true;
        case Action::gotoFrame: {
            const std::uint32_t frame = operands.u16();
            if (operands.ok()) gotoFrame(movie, target, frame + 1.0, AfterGoto::stop);
            return true;
        }
        case Action::gotoLabel: goToLabel(movie, textOf(operands), behind); return true;
        case Action::gotoFrame2: goToFrame2(movie, operands.u8() != 0); return true;
        case Action::setTarget: setTarget(movie, textOf(operands)); return true;
        case Action::setTarget2: {
            const Value path = movie.scripts.stack.pop();
            if (path.is(ValueType::text)) setTarget(movie, path.asText().view());
            return true;
        }
        default: return false;
    }
}

}  // namespace qel
