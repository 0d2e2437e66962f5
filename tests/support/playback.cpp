#include "support/playback.h"

#include <algorithm>

namespace qel::test {
namespace {

class Recorder : public SessionObserver {
  public:
    Recorder(Playback& playback, const HeadlessPlatform& platform, bool keepFrames)
        : playback_(playback), platform_(platform), keepFrames_(keepFrames) {}

    void eventRaised(const EventNotice& notice) override {
        const bool numeric = notice.event == HostEvent::progress || notice.event == HostEvent::newPass;
        playback_.events.push_back({platform_.elapsedMs(), notice.event, notice.argument, numeric ? notice.value : 0});
        if (notice.event == HostEvent::contentOpened)
            playback_.info = *reinterpret_cast<const ContentInfo*>(notice.value);
        if (notice.event == HostEvent::presentFrame) keepFrame(*reinterpret_cast<const FrameRecord*>(notice.value));
    }

    void serviceCalled(const ServiceCall& call) override {
        if (const auto* read = std::get_if<calls::Read>(&call)) playback_.reads.push_back(*read);
        if (const auto* written = std::get_if<calls::WriteTemporary>(&call)) playback_.temporaryBytes += written->count;
        if (const auto* allocated = std::get_if<calls::Allocate>(&call)) {
            ++playback_.allocations;
            if (allocated->result) ++playback_.blocksLeft;
        }
        if (std::holds_alternative<calls::Free>(call)) --playback_.blocksLeft;
    }

  private:
    void keepFrame(const FrameRecord& frame) {
        playback_.frameTimesMs.push_back(platform_.elapsedMs());
        if (!keepFrames_) return;
        Image image{frame.width, frame.height, {}};
        for (std::uint32_t y = 0; y < frame.height; ++y) {
            const std::uint16_t* row = frame.pixels + y * (frame.pitch / 2);
            image.pixels.insert(image.pixels.end(), row, row + frame.width);
        }
        playback_.frames.push_back(std::move(image));
    }

    Playback& playback_;
    const HeadlessPlatform& platform_;
    bool keepFrames_;
};

}  // namespace

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
