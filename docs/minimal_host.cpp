// A whole host in one file: plays content in real time, without a window, and writes the last frame as a PPM picture.
// Usage: minimal_host FILE FRAMES OUT.ppm. docs/embedding.md explains it.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>
#include <vector>

#include "player/player.h"
#include "player/services.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Host {
    qel::HostContext context;
    std::vector<std::uint8_t> content, temporary;
    std::vector<std::uint16_t> frameBuffer;
    std::vector<std::uint8_t> picture;  // the last frame, 3 bytes a pixel
    std::optional<std::uint32_t> timerMs;
    unsigned framesLeft = 0;
    bool ended = false;
};

Host& hostOf(qel::HostContext& context) { return *static_cast<Host*>(context.owner); }

// --- services

bool readContent(qel::HostContext& context, std::uint32_t offset, std::uint32_t count, std::uint8_t* to) {
    const Host& host = hostOf(context);
    const std::vector<std::uint8_t>& bytes = context.readFromContent ? host.content : host.temporary;
    if (offset > bytes.size() || count > bytes.size() - offset) return false;
    if (count != 0) std::memcpy(to, bytes.data() + offset, count);
    return true;
}

bool writeTemporaryContent(qel::HostContext& context, std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t>& temporary = hostOf(context).temporary;
    temporary.insert(temporary.end(), bytes.begin(), bytes.end());
    return true;
}

std::uint32_t tickCount(qel::HostContext&) {
    using namespace std::chrono;
    return static_cast<std::uint32_t>(duration_cast<milliseconds>(Clock::now().time_since_epoch()).count());
}

// What a host without sound, registries and network answers.
const qel::PlatformServices services{
    .readContent = readContent,
    .createTemporaryContent =
        [](qel::HostContext& context, std::uint32_t) {
            hostOf(context).temporary.clear();
            return true;
        },
    .writeTemporaryContent = writeTemporaryContent,
    .switchToTemporaryContent = [](qel::HostContext& context) { context.readFromContent = false; },
    .tickCount = tickCount,
    .date = [](qel::HostContext&) { return qel::Date{}; },
    .timeOfDay = [](qel::HostContext&) { return qel::TimeOfDay{}; },
    .armTimer = [](qel::HostContext& context, std::uint32_t ms) { hostOf(context).timerMs = ms == 1 ? 20 : ms; },
    .cancelTimer = [](qel::HostContext& context) { hostOf(context).timerMs.reset(); },
    .allocate = [](qel::HostContext&, std::size_t size) { return std::malloc(size != 0 ? size : 1); },
    .free = [](qel::HostContext&, void* block) { std::free(block); },
    .queryHostInformation = [](qel::HostContext&) { return false; },
    .rendersText = [](qel::HostContext&, std::string_view, int) { return false; },
    .batteryLevel = [](qel::HostContext&) { return std::uint8_t{255}; },
    .antennaLevel = [](qel::HostContext&) { return std::uint8_t{255}; },
    .vibrate = [](qel::HostContext&, std::uint32_t) {},
    .startSound = [](qel::HostContext&, const qel::SoundRequest&) {},
    .stopSound = [](qel::HostContext&, qel::SoundChannel, std::int32_t) {},
    .pauseSound = [](qel::HostContext&, qel::SoundChannel) {},
    .resumeSound = [](qel::HostContext&, qel::SoundChannel) {},
    .setSoundVolume = [](qel::HostContext&, qel::SoundChannel, std::uint8_t) {},
    .loadRegistry = [](qel::HostContext&, const char*, qel::RegistryItemSink, void*) { return false; },
    .saveRegistry = [](qel::HostContext&, const char*, std::span<const char* const>, std::span<const char* const>,
                       bool) { return false; },
    .deleteRegistry = [](qel::HostContext&, const char*) { return false; },
    .resolveName = [](qel::HostContext&, const char*, qel::TransportCallback, void*) {},
    .connect = [](qel::HostContext&, std::uint32_t, std::uint16_t, qel::TransportCallback, void*) {},
    .send = [](qel::HostContext&, std::span<const std::uint8_t>, std::uint32_t, qel::TransportCallback, void*) {},
    .receive = [](qel::HostContext&, std::span<std::uint8_t>, qel::TransportCallback, void*) {},
    .closeConnection = [](qel::HostContext&) {},
    .log = [](qel::HostContext&, std::u16string_view) {},
};

// --- events

bool openContent(Host& host, const qel::ContentInfo& info) {
    constexpr std::uint32_t largest = 4096;  // the sizes come from the content: believe no nonsense
    if (info.width > largest || info.height > largest) return false;
    host.frameBuffer.assign(std::size_t{info.width} * info.height * 2, 0);  // two buffers of 16-bit words
    qel::playerAttachFrameBuffer(*host.context.player, host.frameBuffer.data(), static_cast<std::uint16_t>(info.width),
                                 static_cast<std::uint16_t>(info.height));
    std::printf("content of %u x %u pixels\n", info.width, info.height);
    return true;
}

void keepFrame(Host& host, const qel::FrameRecord& frame) {
    if (host.ended) return;
    host.picture.clear();
    for (std::uint32_t y = 0; y < frame.height; ++y) {
        const std::uint16_t* row = frame.pixels + std::size_t{y} * (frame.pitch / 2);
        for (std::uint32_t x = 0; x < frame.width; ++x) {
            host.picture.push_back(static_cast<std::uint8_t>((row[x] >> 11) * 255 / 31));
            host.picture.push_back(static_cast<std::uint8_t>((row[x] >> 5 & 63) * 255 / 63));
            host.picture.push_back(static_cast<std::uint8_t>((row[x] & 31) * 255 / 31));
        }
    }
    host.context.frameWidth = frame.width;
    host.context.frameHeight = frame.height;
    if (--host.framesLeft == 0) host.ended = true;
}

std::uint32_t answerEvent(qel::HostContext& context, qel::HostEvent event, std::uint32_t argument,
                          std::uintptr_t value) {
    Host& host = hostOf(context);
    switch (event) {
        case qel::HostEvent::contentOpened: return openContent(host, *reinterpret_cast<qel::ContentInfo*>(value));
        case qel::HostEvent::presentFrame: keepFrame(host, *reinterpret_cast<qel::FrameRecord*>(value)); return 1;
        case qel::HostEvent::finished: host.ended = true; return 1;
        case qel::HostEvent::aborted:
            std::fprintf(stderr, "playback was aborted, reason %u\n", argument);
            host.ended = true;
            return 0;
        default: return 1;
    }
}

// Waits for the timer and steps the player until playback ends, or the player waits for a key that nobody will press.
void play(Host& host) {
    qel::playerStart(*host.context.player);
    while (!host.ended && host.timerMs) {
        std::this_thread::sleep_for(std::chrono::milliseconds(*host.timerMs));
        host.timerMs.reset();
        qel::playerStep(*host.context.player);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return std::fprintf(stderr, "usage: minimal_host FILE FRAMES OUT.ppm\n"), 2;
    Host host;
    host.framesLeft = static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10));
    std::ifstream file(argv[1], std::ios::binary);
    host.content.assign(std::istreambuf_iterator<char>(file), {});

    host.context.services = &services;
    host.context.owner = &host;
    void* memory = std::malloc(qel::playerInstanceSize());
    if (!memory) return 1;
    host.context.player = qel::createPlayer(host.context, memory, {.loop = false}, answerEvent);
    if (!host.context.player) return std::free(memory), std::fprintf(stderr, "this content cannot be played\n"), 3;
    play(host);
    qel::destroyPlayer(*host.context.player);
    std::free(memory);

    if (host.picture.empty()) return 1;
    std::ofstream out(argv[3], std::ios::binary);
    out << "P6\n" << host.context.frameWidth << ' ' << host.context.frameHeight << "\n255\n";
    out.write(reinterpret_cast<const char*>(host.picture.data()), static_cast<std::streamsize>(host.picture.size()));
    return out ? 0 : 1;
}
