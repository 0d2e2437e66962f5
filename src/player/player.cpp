#include "player/player.h"

#include <algorithm>
#include <limits>
#include <new>

#include "format/file_header.h"
#include "movie/movie_engine.h"
#include "player/engine_services.h"
#include "player/movie_driver.h"

namespace qel {
namespace {

constexpr std::size_t sniffedBytes = 24;
using Head = std::array<std::uint8_t, sniffedBytes>;

constexpr std::uint32_t littleEndian32(const Head& head, std::size_t at) {
    return head[at] | std::uint32_t{head[at + 1]} << 8 | std::uint32_t{head[at + 2]} << 16 |
           std::uint32_t{head[at + 3]} << 24;
}

constexpr std::uint32_t bigEndian16(const Head& head, std::size_t at) {
    return std::uint32_t{head[at]} << 8 | head[at + 1];
}

// A variant of the older container that no player of this family plays: known by a byte that a field of its header
// leads to.
bool isRefusedContainer(const PlayerInstance& player, const Head& head) {
    constexpr std::size_t fieldOffset = 8;
    constexpr std::uint32_t distance = 14;
    constexpr std::uint8_t refusedValue = 2;
    const std::uint32_t at = bigEndian16(head, fieldOffset) + distance;
    std::uint8_t value = 0;
    if (at < head.size())
        value = head[at];
    else if (!readContent(player, at, {&value, 1}))
        return true;
    return value == refusedValue;
}

std::uint32_t announcedLength(ContentFamily family, const Head& head) {
    switch (family) {
        case ContentFamily::zvis: return littleEndian32(head, zvis::fileLengthOffset);
        case ContentFamily::vis: return littleEndian32(head, vis::contentLengthOffset);
        case ContentFamily::saf: return bigEndian16(head, saf::contentLengthOffset);
        case ContentFamily::stream:
        case ContentFamily::unknown: break;
    }
    return 0;
}

// Marks the time in which an operation runs, so that a teardown asked for from inside it can wait for its end.
template <class Operation>
std::int32_t run(PlayerInstance& player, Operation operation) {
    if (!player.movie) return playerGone;
    if (player.inOperation) return operation();
    player.inOperation = true;
    const std::int32_t result = operation();
    player.inOperation = false;
    if (!player.leaving) return result;
    player.leaving = false;
    destroyPlayer(player);
    return playerGone;
}

}  // namespace

std::uint32_t raiseEvent(PlayerInstance& player, HostEvent event, std::uint32_t argument, std::uintptr_t value) {
    if (player.leaving) return 0;
    return player.callback(*player.host, event, argument, value);
}

std::size_t playerInstanceSize() { return sizeof(PlayerInstance); }

PlayerInstance* createPlayer(HostContext& host, void* memory, const PlayerOptions& options, HostCallback callback) {
    auto* player = new (memory) PlayerInstance;
    player->host = &host;
    player->callback = callback;
    player->timeSlice = std::min<std::uint32_t>(options.timeSlice, std::numeric_limits<std::int32_t>::max());

    Head head;
    if (!readContent(*player, 0, head)) return nullptr;
    const ContentFamily family = contentFamily(head);
    switch (family) {
        case ContentFamily::unknown:
        case ContentFamily::stream: return nullptr;  // streams have no engine in this player
        case ContentFamily::saf:
            if (isRefusedContainer(*player, head)) return nullptr;
            break;
        case ContentFamily::vis:
        case ContentFamily::zvis: break;
    }
    player->contentLength = announcedLength(family, head);
    player->movie = createMovie(*player, options.budget, options.loop, options.startMuted);
    if (!player->movie) return nullptr;
    player->operations = &movieOperations;
    return player;
}

void destroyPlayer(PlayerInstance& player) {
    if (!player.movie || player.leaving) return;
    if (player.inOperation) {
        player.leaving = true;
        return;
    }
    if (player.timerArmed) {
        services(player).cancelTimer(*player.host);
        player.timerArmed = false;
    }
    player.leaving = true;  // nothing is raised from here on
    player.operations->destroy(player);
}

std::int32_t playerStart(PlayerInstance& player) {
    return run(player, [&] { return player.operations->start(player); });
}
std::int32_t playerStep(PlayerInstance& player) {
    return run(player, [&] { return player.operations->step(player); });
}
std::int32_t playerRequestStop(PlayerInstance& player) {
    return run(player, [&] { return player.operations->requestStop(player); });
}
std::int32_t playerPause(PlayerInstance& player) {
    return run(player, [&] { return player.operations->pause(player); });
}
std::int32_t playerResume(PlayerInstance& player) {
    return run(player, [&] { return player.operations->resume(player); });
}
std::int32_t playerSoundOn(PlayerInstance& player) {
    return run(player, [&] { return player.operations->soundOn(player); });
}
std::int32_t playerSoundOff(PlayerInstance& player) {
    return run(player, [&] { return player.operations->soundOff(player); });
}
std::int32_t playerKeyInput(PlayerInstance& player, std::uint32_t keyCode) {
    return run(player, [&] { return player.operations->keyInput(player, keyCode); });
}
std::int32_t playerRestart(PlayerInstance& player) {
    return run(player, [&] { return player.operations->restart(player); });
}
PlayerStatistics playerStatistics(const PlayerInstance& player) {
    return player.movie ? movieStatistics(*player.movie) : PlayerStatistics{};
}

std::int32_t playerAttachFrameBuffer(PlayerInstance& player, std::uint16_t* pixels, std::uint16_t width,
                                     std::uint16_t height) {
    return run(player, [&] { return player.operations->attachFrameBuffer(player, pixels, width, height); });
}
std::int32_t playerConfigure(PlayerInstance& player, const Configuration& configuration) {
    return run(player, [&] { return player.operations->configure(player, configuration); });
}

}  // namespace qel
