// What the movie engine tells the front end after every feed: what it needs next, or how playback ended.
#pragma once

#include <array>
#include <cstdint>

namespace qel {

enum class LoadCode : std::int32_t {
    noTemporaryFile = -4,
    badContent = -3,
    brokenDefinition = -2,
    outOfMemory = -1,
    nothing = 0,
    contentOpened = 1,         // `information` tells the host what it needs for a frame buffer
    needBytes = 2,             // feed `length` bytes of content at `offset`
    again = 3,                 // feed nothing
    wait = 4,                  // feed nothing, after `length` milliseconds
    paletteContentOpened = 5,  // as contentOpened, with a palette; then feed bytes
    loopBack = 6,              // feed nothing; the content starts over
    idle = 7,                  // nothing to do until somebody wakes the player
    finished = 11,
    finishedWithAddress = 12,  // `text` is the address to open
    finishedWithNumber = 13,   // `text` is the number to call
    newPass = 14,              // a pass through the content begins; then feed bytes
};

// The content information that goes with contentOpened and paletteContentOpened.
struct MovieInformation {
    static constexpr std::uint32_t maximumPalette = 10;

    std::uint32_t version = 0;
    std::uint32_t width = 0, height = 0;  // of the stage, pixels
    std::uint32_t paletteCount = 0;       // movies without a palette: 1 when the content names a background colour
    std::uint32_t extra = 0;              // movies without a palette: that colour, RGB565
    std::uint8_t option1 = 0;
    std::uint8_t option2 = 0;  // movies without a palette: 1 when frames may be dropped
    std::array<std::uint32_t, maximumPalette> palette{};
};

struct LoadStatus {
    LoadCode code = LoadCode::nothing;
    std::uint32_t offset = 0;
    std::uint32_t length = 0;  // bytes, 0: as many as fit a chunk; for `wait` milliseconds
    const MovieInformation* information = nullptr;
    const char* text = nullptr;
};

}  // namespace qel
