// One playing content: what the front end keeps, and the operation table of the engine that plays it.
#pragma once

#include <array>
#include <cstdint>

#include "player/host_context.h"
#include "player/load_status.h"
#include "player/player.h"

namespace qel {

struct Movie;

// An engine fills one of these; the front end calls nothing else of it. Every slot takes the instance first.
struct EngineOperations {
    std::int32_t (*start)(PlayerInstance&);
    std::int32_t (*step)(PlayerInstance&);
    std::int32_t (*requestStop)(PlayerInstance&);
    std::int32_t (*pause)(PlayerInstance&);
    std::int32_t (*resume)(PlayerInstance&);
    std::int32_t (*soundOn)(PlayerInstance&);
    std::int32_t (*soundOff)(PlayerInstance&);
    std::int32_t (*keyInput)(PlayerInstance&, std::uint32_t keyCode);
    std::int32_t (*attachFrameBuffer)(PlayerInstance&, std::uint16_t* pixels, std::uint16_t width,
                                      std::uint16_t height);
    std::int32_t (*configure)(PlayerInstance&, const Configuration&);
    std::int32_t (*restart)(PlayerInstance&);
    void (*destroy)(PlayerInstance&);  // drains and frees the engine
};

struct PlayerInstance {
    static constexpr std::uint32_t chunkSize = 6144;  // the most content bytes of one feed

    const EngineOperations* operations = nullptr;
    Movie* movie = nullptr;  // null after teardown
    HostContext* host = nullptr;
    HostCallback callback = nullptr;

    bool paused = false;
    bool suppressPresent = false;  // raise nothing for a frame: the engine is being drained
    bool timerArmed = false;
    bool wakePending = false;  // the engine is idle: the next outside call arms the timer
    bool ended = false;        // event 8 or 9 was raised: nothing plays any more
    std::uint32_t passCount = 1;

    // Teardown asked for from inside an event waits until the operation that raised it has returned.
    bool inOperation = false;
    bool leaving = false;

    std::uint32_t timeSlice = 0;           // milliseconds
    std::uint32_t lastYield = 0;           // tick count at the start of the time slice
    std::uint32_t contentLength = 0;       // bytes; of the expanded content once reads come from it
    std::uint32_t decompressedLength = 0;  // announced when the temporary content was created
    LoadStatus* loadStatus = nullptr;      // the engine's
    std::array<std::uint8_t, chunkSize> readBuffer;

    std::uint16_t* frameBuffer = nullptr;  // the host's
    std::uint32_t frameWidth = 0, frameHeight = 0;
};

// Raises an event, unless the host has asked for the end: answers the host's answer, 0 when nothing was raised.
std::uint32_t raiseEvent(PlayerInstance& player, HostEvent event, std::uint32_t argument, std::uintptr_t value);

}  // namespace qel
