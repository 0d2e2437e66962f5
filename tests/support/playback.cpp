#include "support/playback.h"

#include <algorithm>

#include "support/recorder.h"

namespace qel::test {
std::string sketch(const Image& image, std::vector<std::pair<std::uint16_t, char>> letters) {
    std::string drawing;
    for (std::uint32_t y = 0; y < image.height; ++y) {
        for (std::uint32_t x = 0; x < image.width; ++x) {
            const auto known = std::ranges::find(letters, image.at(x, y), &std::pair<std::uint16_t, char>::first);
            drawing += known == letters.end() ? '?' : known->second;
        }
        drawing += '\n';
    }
    return drawing;
}

std::string Playback::eventNumbers() const {
    std::string numbers;
    bool inFrames = false;
    for (const SeenEvent& seen : events) {
        const bool ofFrame = seen.event == HostEvent::presentFrame || (seen.event == HostEvent::progress && inFrames);
        if (ofFrame && inFrames) continue;
        inFrames = ofFrame;
        numbers += (numbers.empty() ? "" : " ") + std::to_string(static_cast<std::uint32_t>(seen.event));
    }
    return numbers;
}

Playback play(const Bytes& content, const PlayOptions& options) {
    Playback playback;
    HeadlessPlatform platform;
    platform.provideContent("content", content);
    Recorder recorder(playback, platform, options.keepFrames);
    SessionOptions sessionOptions = options.session;
    if (sessionOptions.maximumFrames == 0) sessionOptions.maximumFrames = options.mostFrames;
    Session session(platform, sessionOptions, &recorder);
    playback.opened = session.open("content");
    if (playback.opened == OpenResult::opened) playback.end = runToEnd(session, platform, options.schedule);
    playback.ending = session.ending();
    return playback;
}

}  // namespace qel::test
