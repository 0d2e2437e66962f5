// The player: an application hands it an open content file (through the services of its HostContext) and drives it from
// a timer. Everything runs on the caller's thread. See docs/embedding.md for a worked host.
#pragma once

#include <cstddef>
#include <cstdint>

#include "player/host_context.h"

namespace qel {

// How many bytes of memory a PlayerInstance takes here, aligned as for std::max_align_t.
std::size_t playerInstanceSize();

struct PlayerOptions {
    std::uint32_t budget = 307200;  // bytes that the engine may use, counted as on the device
    std::uint32_t timeSlice = 500;  // milliseconds that one step may go on
    bool loop = true;               // play again from the start at the end
    bool startMuted = false;        // stream content only: start without sound
};

// Sniffs the content and makes the engine that plays it, in `memory` (playerInstanceSize() bytes, the caller's).
// Null, with nothing left allocated: the first 24 bytes cannot be read, their magic is unknown, the content is of a
// kind or variant that is refused, or memory ran out.
PlayerInstance* createPlayer(HostContext& host, void* memory, const PlayerOptions& options, HostCallback callback);

// Tears the engine down: cancels the timer, lets the movie finish what it holds (raising no event), and frees
// everything. The caller frees the instance memory afterwards. Called from inside an event, it waits until the
// operation that raised the event has returned: the operation then ends at once, raises nothing more, and reports it by
// its result `playerGone`; the memory must stay until then. Asked for twice it happens once.
void destroyPlayer(PlayerInstance& player);

// What an operation answers when destroyPlayer was called from inside it: the instance is gone when it returns.
inline constexpr std::int32_t playerGone = -100;

// The operations. Each goes to the engine that plays the content; none may be called from inside another.
std::int32_t playerStart(PlayerInstance& player);        // once, after creation: arms the timer
std::int32_t playerStep(PlayerInstance& player);         // on every tick of the timer
std::int32_t playerRequestStop(PlayerInstance& player);  // playback ends soon, by event 8
std::int32_t playerPause(PlayerInstance& player);
std::int32_t playerResume(PlayerInstance& player);
std::int32_t playerSoundOn(PlayerInstance& player);
std::int32_t playerSoundOff(PlayerInstance& player);
std::int32_t playerKeyInput(PlayerInstance& player, std::uint32_t keyCode);
std::int32_t playerRestart(PlayerInstance& player);

// What a player is about to do, for tools that measure: with a time slice of 0 every step does one piece of work.
enum class PlayerWork : std::uint8_t {
    loading,     // headers, leading records, definitions; the start of a pass
    reading,     // records of the timeline, and the changes that frames make
    scripts,     // actions, keys and commands
    drawing,     // pacing, finding what has changed, drawing it
    presenting,  // overlays, handing the frame over
    finishing,
};
struct PlayerStatistics {
    PlayerWork next = PlayerWork::loading;  // what the next step begins with
    std::uint32_t budgetInUse = 0;          // bytes of the budget
    std::uint32_t budgetPeak = 0;           // the most that was in use at one time
};
PlayerStatistics playerStatistics(const PlayerInstance& player);

// These two are called from inside events 1 and 2.
// `pixels` has room for width * height * 4 bytes and stays the host's.
std::int32_t playerAttachFrameBuffer(PlayerInstance& player, std::uint16_t* pixels, std::uint16_t width,
                                     std::uint16_t height);
struct Configuration {
    std::uint32_t value = 0;
    std::uint8_t options[4] = {};
};
std::int32_t playerConfigure(PlayerInstance& player, const Configuration& configuration);

}  // namespace qel
