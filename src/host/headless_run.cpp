#include "host/headless_run.h"

#include <algorithm>

namespace qel {
namespace {

// In the order in which things due at one time happen.
enum class Occurrence : std::uint8_t { key, stop, end, timer, nothing };

struct Due {
    Occurrence what = Occurrence::nothing;
    std::uint64_t atUs = 0;
};

Due nextDue(const Schedule& schedule, std::size_t keysPressed, const HeadlessPlatform& platform) {
    Due next;
    const auto consider = [&next](Occurrence what, std::uint64_t atUs) {
        if (next.what == Occurrence::nothing || atUs < next.atUs) next = {what, atUs};
    };
    if (keysPressed < schedule.keys.size()) consider(Occurrence::key, schedule.keys[keysPressed].atMs * 1000);
    if (schedule.stopAtMs) consider(Occurrence::stop, *schedule.stopAtMs * 1000);
    if (next.what == Occurrence::nothing && !platform.timerDueUs()) return next;  // the end alone is worth no waiting
    if (schedule.endAtMs) consider(Occurrence::end, *schedule.endAtMs * 1000);
    if (platform.timerDueUs()) consider(Occurrence::timer, *platform.timerDueUs());
    return next;
}

}  // namespace

RunEnd runToEnd(Session& session, HeadlessPlatform& platform, Schedule schedule) {
    std::ranges::stable_sort(schedule.keys, {}, &KeyPress::atMs);
    std::size_t keysPressed = 0;
    while (session.playing()) {
        const Due due = nextDue(schedule, keysPressed, platform);
        platform.jumpTo(due.atUs);
        switch (due.what) {
            case Occurrence::key: session.keyInput(schedule.keys[keysPressed++].code); break;
            case Occurrence::stop:
                schedule.stopAtMs.reset();
                session.requestStop();
                break;
            case Occurrence::end: session.end(); return RunEnd::timeReached;
            case Occurrence::timer: session.timerFired(); break;
            case Occurrence::nothing: session.end(); return RunEnd::idle;
        }
    }
    return RunEnd::playbackEnded;
}

}  // namespace qel
