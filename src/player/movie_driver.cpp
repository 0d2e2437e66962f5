#include "player/movie_driver.h"

#include <algorithm>

#include "format/file_header.h"
#include "format/integers.h"
#include "movie/movie_engine.h"
#include "player/engine_services.h"

namespace qel {
namespace {

constexpr std::uint32_t soonest = 1;  // the timer argument that means the shortest usual tick

// What dispatching one load status led to.
enum class Dispatch { goOn, ended, endedShort };
constexpr std::int32_t shortContent = 3;  // what a step answers when the content is shorter than it announced

void arm(PlayerInstance& player, std::uint32_t interval) {
    if (player.ended) return;
    services(player).armTimer(*player.host, interval);
    player.timerArmed = true;
}

void armUnlessArmed(PlayerInstance& player) {
    if (!player.timerArmed) arm(player, soonest);
}

void wake(PlayerInstance& player) {
    if (!player.wakePending) return;
    player.wakePending = false;
    arm(player, soonest);
}

Dispatch abortPlayback(PlayerInstance& player, AbortReason reason) {
    player.ended = true;
    raiseEvent(player, HostEvent::aborted, static_cast<std::uint32_t>(reason), 0);
    return Dispatch::ended;
}

Dispatch finishPlayback(PlayerInstance& player, FinishReason reason, const char* text) {
    player.ended = true;
    raiseEvent(player, HostEvent::finished, static_cast<std::uint32_t>(reason), reinterpret_cast<std::uintptr_t>(text));
    return Dispatch::ended;
}

Dispatch advance(PlayerInstance& player) {
    player.loadStatus = feedMovie(*player.movie, {});
    return Dispatch::goOn;
}

// How feeding ends when the bytes cannot be had.
enum class Fed { yes, tooShort, unreadable };

// Brings the engine the bytes it asked for. A request that cannot bring a new byte would go on for ever: one at the end
// of the content, or one for bytes that the engine has just been given and did not use.
Fed bringBytes(PlayerInstance& player) {
    LoadStatus& status = *player.loadStatus;
    if (player.contentLength < status.offset) return Fed::tooShort;
    if (player.contentLength == status.offset) return Fed::unreadable;
    const std::uint32_t left = player.contentLength - status.offset;
    if (status.length > left) status.length = left;
    const std::uint32_t wanted = status.length != 0 ? status.length : left;
    const std::uint32_t count = std::min(wanted, PlayerInstance::chunkSize);

    const std::span<std::uint8_t> chunk{player.readBuffer.data(), count};
    const std::uint32_t offset = status.offset;
    if (!readContent(player, offset, chunk)) return Fed::unreadable;
    player.loadStatus = feedMovie(*player.movie, chunk);

    const LoadStatus& next = *player.loadStatus;
    const std::uint32_t nextCount = next.length != 0 ? next.length : PlayerInstance::chunkSize;
    const bool sameAgain = next.code == LoadCode::needBytes && next.offset == offset &&
                           std::min(nextCount, player.contentLength - offset) <= count;
    return sameAgain ? Fed::unreadable : Fed::yes;
}

Dispatch feed(PlayerInstance& player) {
    switch (bringBytes(player)) {
        case Fed::yes: return Dispatch::goOn;
        case Fed::unreadable:
            player.loadStatus->code = LoadCode::badContent;  // a teardown need not try again
            return abortPlayback(player, AbortReason::badContent);
        case Fed::tooShort: break;
    }
    services(player).cancelTimer(*player.host);
    abortPlayback(player, AbortReason::badContent);
    return Dispatch::endedShort;
}

// Which kinds of content want the conversions of older players: 1 for version 16 or less and for 21, else the fit flag
// of a "VIS" header as it stands. The header is read again, from wherever reads come from now.
bool readOldFormat(const PlayerInstance& player, std::uint32_t version, std::uint8_t& oldFormat) {
    std::array<std::uint8_t, 4> head;
    if (!readContent(player, 0, head)) return false;
    const bool isVis = contentFamily(head) == ContentFamily::vis;
    const bool old = version <= 16 || version == 21;
    oldFormat = old ? 1 : isVis ? head[vis::flagsOffset] & vis::fitToScreen : 0;
    return true;
}

// Event 1. True when the host took the content; otherwise playback has been aborted.
bool openContent(PlayerInstance& player, ContentKind kind) {
    const MovieInformation& information = *player.loadStatus->information;
    ContentInfo info{.kind = kind,
                     .version = information.version,
                     .width = information.width,
                     .height = information.height,
                     .paletteCount = static_cast<std::uint8_t>(information.paletteCount),
                     .extra = information.extra,
                     .option1 = information.option1,
                     .option2 = information.option2};
    if (kind == ContentKind::paletteMovie)
        std::copy(information.palette.begin(), information.palette.end(), info.palette.begin());
    if (!readOldFormat(player, information.version, info.oldFormat)) {
        player.loadStatus->code = LoadCode::badContent;
        abortPlayback(player, AbortReason::badContent);
        return false;
    }
    const std::uint32_t answer =
        raiseEvent(player, HostEvent::contentOpened, 0, reinterpret_cast<std::uintptr_t>(&info));
    if ((answer & 0xFF) != 0) return true;
    abortPlayback(player, AbortReason::noTemporaryFile);
    return false;
}

Dispatch dispatchStatus(PlayerInstance& player) {
    LoadStatus& status = *player.loadStatus;
    switch (status.code) {
        case LoadCode::noTemporaryFile: return abortPlayback(player, AbortReason::noTemporaryFile);
        case LoadCode::badContent: return abortPlayback(player, AbortReason::badContent);
        case LoadCode::brokenDefinition: return abortPlayback(player, AbortReason::brokenDefinition);
        case LoadCode::outOfMemory: return abortPlayback(player, AbortReason::outOfMemory);
        case LoadCode::contentOpened:
            return openContent(player, ContentKind::movie) ? advance(player) : Dispatch::ended;
        case LoadCode::paletteContentOpened:
            return openContent(player, ContentKind::paletteMovie) ? feed(player) : Dispatch::ended;
        case LoadCode::needBytes: return feed(player);
        case LoadCode::again:
        case LoadCode::loopBack: return advance(player);
        case LoadCode::newPass:
            raiseEvent(player, HostEvent::newPass, 0, player.passCount);
            raiseEvent(player, HostEvent::progress, 1, 0);
            ++player.passCount;
            return feed(player);
        case LoadCode::finished: return finishPlayback(player, FinishReason::end, nullptr);
        case LoadCode::finishedWithAddress: return finishPlayback(player, FinishReason::openAddress, status.text);
        case LoadCode::finishedWithNumber: return finishPlayback(player, FinishReason::callNumber, status.text);
        case LoadCode::nothing:
        case LoadCode::wait:
        case LoadCode::idle: break;
    }
    return Dispatch::goOn;
}

std::int32_t start(PlayerInstance& player) {
    player.lastYield = tickCount(player);
    player.loadStatus = feedMovie(*player.movie, {});
    arm(player, soonest);
    return 1;
}

std::int32_t step(PlayerInstance& player) {
    player.timerArmed = false;
    if (!player.loadStatus || player.ended) return 0;
    for (;;) {
        const Dispatch dispatched = dispatchStatus(player);
        if (dispatched != Dispatch::goOn) return dispatched == Dispatch::endedShort ? shortContent : 0;
        if (player.leaving) return 0;

        LoadStatus& status = *player.loadStatus;
        if (status.code == LoadCode::idle) {
            status.code = LoadCode::again;
            player.wakePending = true;
            return 1;
        }
        if (status.code == LoadCode::wait) {
            status.code = LoadCode::again;
            arm(player, status.length);
            return 1;
        }
        const std::uint32_t now = tickCount(player);
        if (tickDifference(now, player.lastYield) < static_cast<std::int32_t>(player.timeSlice)) continue;
        player.lastYield = now;
        arm(player, soonest);
        return 1;
    }
}

std::int32_t requestStop(PlayerInstance& player) {
    requestMovieStop(*player.movie);
    wake(player);
    if (player.paused) {
        player.paused = false;
        armUnlessArmed(player);
    }
    return 1;
}

std::int32_t pause(PlayerInstance& player) {
    if (player.timerArmed) services(player).cancelTimer(*player.host);
    player.timerArmed = false;
    player.paused = true;
    resynchroniseMovieClock(*player.movie);
    pauseMovieSounds(*player.movie);
    return 1;
}

std::int32_t resume(PlayerInstance& player) {
    armUnlessArmed(player);
    player.paused = false;
    resumeMovieSounds(*player.movie);
    return 1;
}

std::int32_t soundOn(PlayerInstance& player) {
    muteMovie(*player.movie, false);
    return 1;
}

std::int32_t soundOff(PlayerInstance& player) {
    muteMovie(*player.movie, true);
    return 1;
}

std::int32_t keyInput(PlayerInstance& player, std::uint32_t keyCode) {
    if (player.paused) return 0;
    handKeyToMovie(*player.movie, keyCode);
    wake(player);
    return 0;
}

std::int32_t attachFrameBuffer(PlayerInstance& player, std::uint16_t* pixels, std::uint16_t width,
                               std::uint16_t height) {
    player.frameBuffer = pixels;
    player.frameWidth = width;
    player.frameHeight = height;
    attachMovieFrameBuffer(*player.movie, pixels, width, height);
    return 1;
}

// Packed into one number and then not used, as by every engine of this system.
std::int32_t configure(PlayerInstance&, const Configuration&) { return 1; }

std::int32_t restart(PlayerInstance& player) {
    resume(player);
    restartMovie(*player.movie);
    player.passCount = 1;
    wake(player);
    return 1;
}

// A frame buffer for content that is torn down before its host gave it one.
constexpr std::uint16_t dummySide = 2;

// Lets the engine finish what it holds, as `step` does, but without a time slice and without events.
void drain(PlayerInstance& player) {
    std::uint16_t dummyFrame[dummySide * dummySide * 2] = {};
    player.suppressPresent = true;
    requestMovieStop(*player.movie);
    player.wakePending = false;
    prepareMovieDrain(*player.movie);
    constexpr unsigned mostFeeds = 20000;  // a scan over a long movie need not come to its end
    for (unsigned feeds = 0; feeds < mostFeeds; ++feeds) {
        switch (player.loadStatus->code) {
            case LoadCode::contentOpened:
            case LoadCode::paletteContentOpened:
                attachFrameBuffer(player, dummyFrame, dummySide, dummySide);
                if (player.loadStatus->code == LoadCode::contentOpened) {
                    advance(player);
                    break;
                }
                [[fallthrough]];
            case LoadCode::needBytes:
            case LoadCode::newPass:
                if (bringBytes(player) != Fed::yes) return;
                break;
            case LoadCode::again:
            case LoadCode::wait:
            case LoadCode::loopBack:
            case LoadCode::idle: advance(player); break;
            default: return;
        }
    }
}

void destroy(PlayerInstance& player) {
    if (player.loadStatus) drain(player);
    destroyMovie(player.movie);
    player.movie = nullptr;
    player.loadStatus = nullptr;
}

}  // namespace

const EngineOperations movieOperations{
    .start = start,
    .step = step,
    .requestStop = requestStop,
    .pause = pause,
    .resume = resume,
    .soundOn = soundOn,
    .soundOff = soundOff,
    .keyInput = keyInput,
    .attachFrameBuffer = attachFrameBuffer,
    .configure = configure,
    .restart = restart,
    .destroy = destroy,
};

}  // namespace qel
