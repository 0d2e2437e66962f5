// Measures what playing content costs on this machine: the time of each presented frame, split by kind of work.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "host/headless_platform.h"
#include "host/session.h"

namespace qel::cli {

// What time it is on this machine; only differences count.
using Stopwatch = std::function<std::chrono::nanoseconds()>;

// What was done since the frame before, one entry for each PlayerWork. Of `loading`: the start of a later pass.
struct FrameCost {
    static constexpr std::size_t kinds = static_cast<std::size_t>(PlayerWork::finishing) + 1;

    std::chrono::nanoseconds& operator[](PlayerWork work) { return parts[static_cast<std::size_t>(work)]; }
    std::chrono::nanoseconds operator[](PlayerWork work) const { return parts[static_cast<std::size_t>(work)]; }
    std::chrono::nanoseconds total() const;

    std::array<std::chrono::nanoseconds, kinds> parts{};
};

struct Measurement {
    enum class End : std::uint8_t {
        enoughFrames,
        playbackEnded,  // Session::ending says how
        idle,           // the content waits for a key
        stalled,        // no frame came for PlaybackMeter::patienceMs
    };
    End end = End::enoughFrames;
    std::chrono::nanoseconds loading{};  // opening the content, and loading before the first frame
    std::vector<FrameCost> frames;       // in the order in which they came
    std::uint64_t passes = 0;            // begun
    std::uint32_t budgetPeak = 0;        // bytes of the budget in use at most
};

// Plays one content without waiting, in single pieces of work, and takes the time of each. A piece takes no virtual
// time but what reading the clock costs, so that the movie is never late: it drops no frame, and what is measured does
// not depend on how fast this machine is.
class PlaybackMeter : private SessionObserver {
  public:
    static constexpr std::uint64_t patienceMs = 600000;  // of the virtual clock

    // The platform must outlive the meter. Of `player` the time slice is not used.
    PlaybackMeter(HeadlessPlatform& platform, PlayerOptions player, Stopwatch now);

    // Until that many frames were presented, or the content goes no further. Once for each meter. Throws CommandError
    // for content that cannot be opened.
    Measurement measure(const std::string& file, std::uint64_t frames);

    const Session& session() const { return session_; }  // for its ending; nothing plays any more

  private:
    void eventRaised(const EventNotice& notice) override;
    void serviceCalled(const ServiceCall& call) override;
    void step(FrameCost& cost);

    HeadlessPlatform& platform_;
    Stopwatch now_;
    Session session_;
    Measurement result_;
    bool yielded_ = false;  // the timer was armed for the next piece of work, not to wait
};

// How durations spread, in microseconds: the value that no, half and 95 percent of them lie below (nearest rank).
struct Spread {
    double minimum = 0, median = 0, percentile95 = 0;
};
Spread spreadOf(std::vector<std::chrono::nanoseconds> durations);  // at least one

}  // namespace qel::cli
