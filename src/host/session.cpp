#include "host/session.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "host/session_services.h"

namespace qel {

void Session::FreeBlock::operator()(void* block) const { std::free(block); }

Session::Session(Platform& platform, SessionOptions options, SessionObserver* observer)
    : platform_(platform),
      options_(std::move(options)),
      observer_(observer),
      context_{.services = &sessionServices, .owner = this},
      instanceMemory_(static_cast<std::uint8_t*>(std::calloc(1, playerInstanceSize()))) {}

Session::~Session() { end(); }

OpenResult Session::open(const std::string& path) {
    if (operating_) return OpenResult::refused;
    end();
    resetHostContext(context_);
    ending_ = {};
    lastRead_ = {};
    framesPresented_ = reads_ = allocations_ = 0;
    if (!instanceMemory_) return OpenResult::outOfMemory;
    context_.instanceMemory = instanceMemory_.get();
    context_.contentFile = platform_.openContent(path);
    if (context_.contentFile == invalidFile) return OpenResult::cannotOpen;
    operating_ = true;  // an end() from inside a service waits until the player is there
    context_.player = createPlayer(context_, instanceMemory_.get(), options_.player, &Session::hostCallback);
    operating_ = false;
    if (leaving_) {
        if (context_.player) destroyPlayer(*context_.player);
        finishEnding();
        return OpenResult::refused;
    }
    if (!context_.player) {
        closeFiles();
        resetHostContext(context_);
        return OpenResult::refused;
    }
    operate([](PlayerInstance& player) { playerStart(player); });
    return OpenResult::opened;
}

// Every operation goes through here, so that what was asked for from inside it is carried out once it has returned.
template <class Operation>
void Session::operate(Operation operation) {
    if (!playing() || operating_) return;
    operating_ = true;
    operation(*context_.player);
    operating_ = false;
    if (leaving_) finishEnding();
}

void Session::timerFired() {
    platform_.killTimer();
    if (context_.skipNextTick) {
        context_.skipNextTick = false;
        return;
    }
    operate([](PlayerInstance& player) { playerStep(player); });
}

void Session::keyInput(std::uint32_t keyCode) {
    operate([keyCode](PlayerInstance& player) { playerKeyInput(player, keyCode); });
}

void Session::requestStop() {
    operate([](PlayerInstance& player) { playerRequestStop(player); });
}

void Session::pause() {
    operate([](PlayerInstance& player) { playerPause(player); });
}

void Session::resume() {
    operate([](PlayerInstance& player) { playerResume(player); });
}

PlayerStatistics Session::statistics() const {
    return context_.player ? playerStatistics(*context_.player) : PlayerStatistics{};
}

void Session::stopAndFinish(std::uint32_t patienceMs) {
    if (operating_) return;
    requestStop();
    const std::uint32_t begin = playing() ? platform_.tickCount() : 0;
    while (playing()) {
        operate([](PlayerInstance& player) { playerStep(player); });
        if (playing() && platform_.tickCount() - begin > patienceMs) end();
    }
}

void Session::end() {
    if (leaving_) return;
    if (ending_.kind == Ending::Kind::none && context_.player) ending_.kind = Ending::Kind::ended;
    leaving_ = true;
    // From inside an event the player only notes this. Its memory, and the frame buffer it may be drawing into, stay
    // until the operation has returned.
    if (context_.player) destroyPlayer(*context_.player);
    if (!operating_) finishEnding();
}

void Session::finishEnding() {
    context_.player = nullptr;
    platform_.killTimer();  // a message still to come must not step the next player
    frameBuffer_.reset();
    stagingBuffer_.reset();
    closeFiles();
    resetHostContext(context_);
    context_.done = ending_.kind == Ending::Kind::finished;
    leaving_ = false;
}

void Session::closeFiles() {
    for (FileHandle* file : {&context_.tempFile, &context_.contentFile}) {
        if (*file != invalidFile) platform_.closeFile(*file);
        *file = invalidFile;
    }
}

std::uint32_t Session::hostCallback(HostContext& host, HostEvent event, std::uint32_t argument, std::uintptr_t value) {
    Session& session = *static_cast<Session*>(host.owner);
    if (session.leaving_) return 0;
    if (session.observer_) session.observer_->eventRaised({event, argument, value});
    return session.answerEvent(event, argument, value);
}

std::uint32_t Session::answerEvent(HostEvent event, std::uint32_t argument, std::uintptr_t value) {
    switch (event) {
        case HostEvent::contentOpened: return contentOpened(*reinterpret_cast<const ContentInfo*>(value)) ? 1 : 0;
        case HostEvent::configure: configure(); return 1;
        case HostEvent::presentFrame: presentFrame(*reinterpret_cast<const FrameRecord*>(value)); return 1;
        case HostEvent::streamInformation: return 1;
        case HostEvent::newPass: return 0;
        case HostEvent::progress: return argument == 1 || argument == 2 ? 1 : 0;
        case HostEvent::streamStatus: return argument >= 1 && argument <= 11 && argument != 4 ? 1 : 0;
        case HostEvent::finished: {
            const char* text = argument == static_cast<std::uint32_t>(FinishReason::end)
                                   ? nullptr
                                   : reinterpret_cast<const char*>(value);
            ending_ = {.kind = Ending::Kind::finished, .reason = argument, .text = text ? text : ""};
            end();
            context_.done = true;
            return 1;
        }
        case HostEvent::aborted:
            ending_ = {.kind = Ending::Kind::aborted, .reason = argument, .value = static_cast<std::uint32_t>(value)};
            end();
            return 0;
    }
    return 0;
}

bool Session::contentOpened(const ContentInfo& info) {
    if (options_.faults.refuseContent || info.width > largestFrame || info.height > largestFrame) return false;
    const std::size_t pixels = std::max<std::size_t>(std::size_t{info.width} * info.height, 1);
    Buffer frame(static_cast<std::uint8_t*>(std::calloc(pixels, 4)));
    Buffer staging(static_cast<std::uint8_t*>(std::calloc(pixels, 4)));
    if (!frame || !staging) return false;
    context_.frameBuffer = reinterpret_cast<std::uint16_t*>(frame.get());
    context_.stagingBuffer = reinterpret_cast<std::uint16_t*>(staging.get());
    context_.frameWidth = info.width;
    context_.frameHeight = info.height;
    context_.paletteCount = info.paletteCount;
    context_.extra = info.extra;
    if (context_.player) {
        playerAttachFrameBuffer(*context_.player, context_.frameBuffer, static_cast<std::uint16_t>(info.width),
                                static_cast<std::uint16_t>(info.height));
    }
    // Only now: until it was handed the new buffer the player holds the old one.
    frameBuffer_ = std::move(frame);
    stagingBuffer_ = std::move(staging);
    return true;
}

void Session::configure() {
    if (!context_.player) return;
    playerConfigure(*context_.player, {.value = 241, .options = {6, 10, 0, 0}});
    playerConfigure(*context_.player, {.value = 240, .options = {10, 15, 1, 0}});
}

void Session::presentFrame(const FrameRecord& frame) {
    ++framesPresented_;
    // A record larger than the frame buffer would have the platform convert past the staging buffer's end.
    const bool fits = frame.width <= context_.frameWidth && frame.height <= context_.frameHeight;
    const std::size_t stagingBytes = std::size_t{context_.frameWidth} * context_.frameHeight * 4;
    if (fits && !platform_.present(frame, {stagingBuffer_.get(), stagingBytes})) platform_.log(u"bitmap is null\n");
    if (framesPresented_ == options_.maximumFrames) end();
}

}  // namespace qel
