#include "support/recorder.h"

namespace qel::test {
namespace {

std::string channelNumber(SoundChannel channel) { return std::to_string(static_cast<int>(channel)); }

// What is kept of a call to a device's service; empty for other calls.
struct DeviceCallText {
    std::string operator()(const calls::Vibrate& call) const { return "vibrate " + std::to_string(call.milliseconds); }
    std::string operator()(const calls::StartSound& call) const {
        const SoundRequest& request = call.request;
        return "start " + channelNumber(request.channel) + " sound " + std::to_string(request.id) + " volume " +
               std::to_string(request.volume) + " bytes " + std::to_string(request.data.size());
    }
    std::string operator()(const calls::StopSound& call) const {
        return "stop " + channelNumber(call.channel) + " sound " + std::to_string(call.id);
    }
    std::string operator()(const calls::PauseSound& call) const { return "pause " + channelNumber(call.channel); }
    std::string operator()(const calls::ResumeSound& call) const { return "resume " + channelNumber(call.channel); }
    std::string operator()(const calls::SetSoundVolume& call) const {
        return "volume " + channelNumber(call.channel) + " " + std::to_string(call.volume);
    }
    template <class Other>
    std::string operator()(const Other&) const {
        return {};
    }
};

}  // namespace

void Recorder::eventRaised(const EventNotice& notice) {
    const bool numeric = notice.event == HostEvent::progress || notice.event == HostEvent::newPass;
    playback_.events.push_back(
        {platform_.elapsedMs(), notice.event, notice.argument, numeric ? std::uint64_t{notice.value} : 0});
    if (notice.event == HostEvent::contentOpened) playback_.info = *reinterpret_cast<const ContentInfo*>(notice.value);
    if (notice.event == HostEvent::presentFrame) keepFrame(*reinterpret_cast<const FrameRecord*>(notice.value));
}

void Recorder::serviceCalled(const ServiceCall& call) {
    if (const auto* read = std::get_if<calls::Read>(&call)) playback_.reads.push_back(*read);
    if (const auto* written = std::get_if<calls::WriteTemporary>(&call)) playback_.temporaryBytes += written->count;
    if (const auto* allocated = std::get_if<calls::Allocate>(&call)) {
        ++playback_.allocations;
        if (allocated->result) ++playback_.blocksLeft;
    }
    if (std::holds_alternative<calls::Free>(call)) --playback_.blocksLeft;
    std::string text = std::visit(DeviceCallText{}, call);
    if (!text.empty()) playback_.deviceCalls.push_back(std::move(text));
}

void Recorder::keepFrame(const FrameRecord& frame) {
    playback_.frameTimesMs.push_back(platform_.elapsedMs());
    if (!keepFrames_) return;
    Image image{frame.width, frame.height, {}};
    for (std::uint32_t y = 0; y < frame.height; ++y) {
        const std::uint16_t* row = frame.pixels + y * (frame.pitch / 2);
        image.pixels.insert(image.pixels.end(), row, row + frame.width);
    }
    playback_.frames.push_back(std::move(image));
}

}  // namespace qel::test
