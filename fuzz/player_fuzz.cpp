// Any bytes through the whole player, as a host plays them: every frame is kept whole, playback has to end, and nothing
// may be left behind. The first byte chooses how it is played, the rest is the content.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/headless_run.h"

namespace {

// Sees that every block of the general heap comes back, and ends content that only begins again and again: a movie
// without a frame passes thousands of times in a second.
struct Watch : qel::SessionObserver {
    qel::Session* session = nullptr;
    std::int64_t blocks = 0;
    int passes = 0;
    void eventRaised(const qel::EventNotice& notice) override {
        constexpr int enough = 100;
        if (notice.event == qel::HostEvent::newPass && ++passes == enough) session->end();
    }
    void serviceCalled(const qel::ServiceCall& call) override {
        if (const auto* allocated = std::get_if<qel::calls::Allocate>(&call)) blocks += allocated->result ? 1 : 0;
        if (std::holds_alternative<qel::calls::Free>(call)) --blocks;
    }
};

// Keys that content is likely to wait for, one after the other.
std::vector<qel::KeyPress> pressedKeys(std::uint8_t first) {
    constexpr std::uint8_t codes[] = {155, 129, 151, 130, 152, 131, 150, 132};
    std::vector<qel::KeyPress> keys;
    for (std::size_t i = 0; i < 48; ++i)
        keys.push_back({.atMs = 17 * i, .code = codes[(i + first) % std::size(codes)]});
    return keys;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace qel;
    if (size == 0) return 0;
    const std::uint8_t how = data[0];
    HeadlessPlatform platform;
    platform.provideContent("content", std::vector<std::uint8_t>(data + 1, data + size));
    Watch watch;
    SessionOptions options;
    options.player.loop = (how & 1) != 0;
    options.player.budget = (how & 2) != 0 ? 20000 : 307200;
    options.maximumFrames = 40;
    if ((how & 4) != 0) options.faults.failedAllocations = {std::uint64_t{how} >> 3};
    Session session(platform, options, &watch);
    watch.session = &session;
    Schedule schedule;
    schedule.keys = pressedKeys(how);
    schedule.endAtMs = 3000;
    if (session.open("content") == OpenResult::opened) runToEnd(session, platform, schedule);
    if (watch.blocks != 0) __builtin_trap();
    return 0;
}
