#include "cli/playback_meter.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "cli/playback_errors.h"

namespace qel::cli {
namespace {

using std::chrono::nanoseconds;

SessionOptions inSinglePieces(PlayerOptions player) {
    player.timeSlice = 0;  // every step does one piece of work and gives way
    return {.player = player};
}

}  // namespace

nanoseconds FrameCost::total() const { return std::accumulate(parts.begin(), parts.end(), nanoseconds{}); }

PlaybackMeter::PlaybackMeter(HeadlessPlatform& platform, PlayerOptions player, Stopwatch now)
    : platform_(platform), now_(std::move(now)), session_(platform, inSinglePieces(player), this) {}

Measurement PlaybackMeter::measure(const std::string& file, std::uint64_t frames) {
    const nanoseconds begin = now_();
    openContent(session_, file);
    result_.loading = now_() - begin;

    FrameCost cost;
    std::uint64_t lastFrameMs = platform_.elapsedMs();
    result_.end = Measurement::End::playbackEnded;
    while (session_.playing()) {
        if (!platform_.timerDueUs()) {
            result_.end = Measurement::End::idle;
            break;
        }
        if (!yielded_) platform_.jumpTo(*platform_.timerDueUs());
        if (platform_.elapsedMs() - lastFrameMs > patienceMs) {
            result_.end = Measurement::End::stalled;
            break;
        }
        const std::uint64_t presentedBefore = session_.framesPresented();
        step(cost);
        if (session_.framesPresented() == presentedBefore) continue;
        lastFrameMs = platform_.elapsedMs();
        result_.frames.push_back(std::exchange(cost, {}));
        if (result_.frames.size() < frames) continue;
        result_.end = Measurement::End::enoughFrames;
        break;
    }
    session_.end();
    return std::move(result_);
}

void PlaybackMeter::step(FrameCost& cost) {
    const PlayerWork work = session_.statistics().next;
    const nanoseconds begin = now_();
    session_.timerFired();
    const nanoseconds took = now_() - begin;
    (work == PlayerWork::loading && result_.frames.empty() ? result_.loading : cost[work]) += took;
    result_.budgetPeak = std::max(result_.budgetPeak, session_.statistics().budgetPeak);
}

void PlaybackMeter::eventRaised(const EventNotice& notice) {
    if (notice.event == HostEvent::newPass) ++result_.passes;
    // After the last events there is no player left to ask.
    if (notice.event == HostEvent::finished || notice.event == HostEvent::aborted)
        result_.budgetPeak = std::max(result_.budgetPeak, session_.statistics().budgetPeak);
}

void PlaybackMeter::serviceCalled(const ServiceCall& call) {
    constexpr std::uint32_t soonest = 1;
    if (const auto* arm = std::get_if<calls::ArmTimer>(&call)) yielded_ = arm->interval == soonest;
}

Spread spreadOf(std::vector<nanoseconds> durations) {
    std::ranges::sort(durations);
    const auto microseconds = [&durations](std::size_t percent) {
        const std::size_t rank = (durations.size() * percent + 99) / 100;  // from 1
        return static_cast<double>(durations[std::max<std::size_t>(rank, 1) - 1].count()) / 1000;
    };
    return {.minimum = microseconds(0), .median = microseconds(50), .percentile95 = microseconds(95)};
}

}  // namespace qel::cli
