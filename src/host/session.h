// One host session: opens content, answers the player's events and services over an injected platform, and takes the
// player down when playback ends. Every client of the player (commands, window, control) is one of these and a loop.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/platform.h"
#include "host/session_observer.h"
#include "player/player.h"

namespace qel {

// Failures to play through on purpose. Calls count from 1.
struct Faults {
    bool refuseContent = false;                         // event 1 is answered 0
    bool noTemporaryFile = false;                       // temporary content cannot be created
    std::vector<std::uint64_t> failedReads = {};        // content reads, the first 24 bytes being the first
    std::vector<std::uint64_t> failedAllocations = {};  // allocations of the general heap
    std::uint64_t allocationsFailFrom = 0;              // that one and all later ones; 0: none
};

struct SessionOptions {
    PlayerOptions player;
    std::uint64_t maximumFrames = 0;  // end right after this many presented frames; 0: no limit
    Faults faults = {};
};

enum class OpenResult : std::uint8_t {
    opened,       // playback has started
    cannotOpen,   // the platform has no such file
    refused,      // the player does not play this content, or could not be made
    outOfMemory,  // no memory for the instance
};

struct Ending {
    enum class Kind : std::uint8_t {
        none,      // playing, or nothing opened yet
        finished,  // event 8: `reason` is a FinishReason, `text` its text
        aborted,   // event 9: `reason` is an AbortReason
        ended,     // by Session::end or the limit on frames
    };
    Kind kind = Kind::none;
    std::uint32_t reason = 0;
    std::uint32_t value = 0;  // of event 9
    std::string text = {};    // of event 8, bytes as the content has them
};

// What the player last read of the content: where to look when it is broken.
struct ContentRead {
    std::uint32_t offset = 0, count = 0;
    bool expanded = false;  // the offset is one of the temporary content
    bool succeeded = true;
};

class Session {
  public:
    static constexpr std::uint32_t largestFrame = 4096;  // pixels in either direction; larger content is refused

    // The platform and the observer (may be null) must outlive the session.
    Session(Platform& platform, SessionOptions options, SessionObserver* observer = nullptr);
    ~Session();  // ends what plays
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Opens content, makes its player and starts it. What played before is ended. Not from inside an event.
    OpenResult open(const std::string& path);

    // The operations. Without a player, and from inside an event, they do nothing.
    void timerFired();  // kills the timer, then steps, unless the player cancelled the timer in the meantime
    void keyInput(std::uint32_t keyCode);
    void requestStop();  // playback goes on to its end, by event 8
    void pause();        // until resume; keys are lost meanwhile, and the time that passes is not caught up with
    void resume();

    // Stops and steps until playback has ended, without waiting for the timer: for a window that closes. Content that
    // takes longer than `patienceMs` over its end is ended at once.
    void stopAndFinish(std::uint32_t patienceMs = 2000);

    // Tears the player down at once. From inside an event or a service it is marked, the player raises nothing more,
    // and the rest is done when the operation has returned. Asked for twice it happens once.
    void end();

    bool playing() const { return context_.player != nullptr && !leaving_; }
    bool done() const { return context_.done; }  // event 8 has come; cleared by the next open
    const Ending& ending() const { return ending_; }
    std::uint64_t framesPresented() const { return framesPresented_; }
    const ContentRead& lastRead() const { return lastRead_; }
    PlayerStatistics statistics() const;  // also from inside an event; all 0 without a player
    const HostContext& context() const { return context_; }

    // The host callback that players of this session get.
    static std::uint32_t hostCallback(HostContext& host, HostEvent event, std::uint32_t argument, std::uintptr_t value);

  private:
    friend struct SessionServices;

    template <class Operation>
    void operate(Operation operation);
    std::uint32_t answerEvent(HostEvent event, std::uint32_t argument, std::uintptr_t value);
    bool contentOpened(const ContentInfo& info);
    void configure();
    void presentFrame(const FrameRecord& frame);
    void finishEnding();
    void closeFiles();
    void notify(const ServiceCall& call) {
        if (observer_) observer_->serviceCalled(call);
    }

    struct FreeBlock {
        void operator()(void* block) const;
    };
    using Buffer = std::unique_ptr<std::uint8_t, FreeBlock>;

    Platform& platform_;
    SessionOptions options_;
    SessionObserver* observer_;
    HostContext context_;
    Buffer instanceMemory_, frameBuffer_, stagingBuffer_;
    bool operating_ = false;  // an operation of the player is on the call stack
    bool leaving_ = false;    // end() was called, and the player or its operation is still on the call stack
    Ending ending_;
    std::uint64_t framesPresented_ = 0, reads_ = 0, allocations_ = 0;
    ContentRead lastRead_;
};

}  // namespace qel
