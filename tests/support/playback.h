// Plays content on the virtual clock and keeps what a host saw of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "author/byte_writer.h"
#include "host/headless_run.h"

namespace qel::test {

using author::Bytes;

// An RGB565 picture.
struct Image {
    std::uint32_t width = 0, height = 0;
    std::vector<std::uint16_t> pixels;

    std::uint16_t at(std::uint32_t x, std::uint32_t y) const { return pixels.at(y * width + x); }
    friend bool operator==(const Image&, const Image&) = default;
};

// One letter for each colour that `letters` lists, '?' for others: rows one under the other, as a test writes a
// picture.
std::string sketch(const Image& image, std::vector<std::pair<std::uint16_t, char>> letters);

struct SeenEvent {
    std::uint64_t timeMs = 0;
    HostEvent event{};
    std::uint32_t argument = 0;
    std::uint64_t value = 0;  // of events whose value is a number
};

struct Playback {
    OpenResult opened = OpenResult::refused;
    RunEnd end = RunEnd::playbackEnded;
    Ending ending;
    ContentInfo info;  // of event 1
    std::vector<SeenEvent> events;
    std::vector<std::uint64_t> frameTimesMs;
    std::vector<Image> frames;
    std::vector<calls::Read> reads;
    std::vector<std::string> deviceCalls;  // sounds and vibration, a text each
    std::uint64_t temporaryBytes = 0;
    std::int64_t blocksLeft = 0;  // of the general heap, when all was over
    std::uint64_t allocations = 0;

    bool finished() const { return ending.kind == Ending::Kind::finished; }
    bool aborted(AbortReason reason) const {
        return ending.kind == Ending::Kind::aborted && ending.reason == static_cast<std::uint32_t>(reason);
    }
    // The events by number, without repeating those of frames.
    std::string eventNumbers() const;
};

struct PlayOptions {
    SessionOptions session{.player = {.loop = false}};
    Schedule schedule;
    bool keepFrames = true;
    std::uint64_t mostFrames = 10000;
};

Playback play(const Bytes& content, const PlayOptions& options = {});

}  // namespace qel::test
