// The host's side of the contract: its record, the host callback with its nine events, and what travels with them.
#pragma once

#include <array>
#include <cstdint>

namespace qel {

struct PlayerInstance;
struct PlatformServices;

using FileHandle = std::intptr_t;
inline constexpr FileHandle invalidFile = -1;

// The host's record, one for each content that plays. The player hands it back with every event and every service call.
// The player never touches its fields; they are here so that hosts share their meaning.
struct HostContext {
    void* window = nullptr;     // whatever the host shows frames in
    bool skipNextTick = false;  // set by the cancel-timer service: the next timer message is swallowed and clears it
    bool done = false;          // playback has finished (event 8)
    FileHandle contentFile = invalidFile;
    FileHandle tempFile = invalidFile;
    void* instanceMemory = nullptr;  // holds the PlayerInstance: playerInstanceSize() bytes
    PlayerInstance* player = nullptr;
    bool readFromContent = true;                    // true: reads come from contentFile, false: from tempFile
    std::uint16_t* frameBuffer = nullptr;           // frameWidth * frameHeight * 4 bytes
    std::uint16_t* stagingBuffer = nullptr;         // frameWidth * frameHeight * 4 bytes
    std::uint32_t frameWidth = 0, frameHeight = 0;  // pixels, from event 1
    std::uint8_t paletteCount = 0;
    std::uint32_t extra = 0;

    const PlatformServices* services = nullptr;  // what the player may ask of the host; never null while a player lives
    void* owner = nullptr;                       // the host's own object
};

// Returns the record to its first state. The window, the services and the owner stay.
inline void resetHostContext(HostContext& host) {
    host = HostContext{.window = host.window, .services = host.services, .owner = host.owner};
}

// The events that a player raises; the comment gives the argument, the value and the answer that counts.
enum class HostEvent : std::uint32_t {
    contentOpened = 1,      // value: const ContentInfo*; answer 0 refuses the content
    configure = 2,          // never raised by these engines
    presentFrame = 3,       // value: const FrameRecord*
    streamInformation = 4,  // value: a number from the stream
    newPass = 5,            // value: the number of the pass
    progress = 6,           // argument 1; value: 0 to 255
    streamStatus = 7,       // argument: a status code 1 to 11
    finished = 8,           // argument: FinishReason; value: const char*, zero-terminated, for the reasons with a text
    aborted = 9,            // argument: AbortReason
};

// Why a movie finished, and what the text of the event is.
enum class FinishReason : std::uint32_t { end = 1, openAddress = 2, callNumber = 3 };

enum class AbortReason : std::uint32_t {
    outOfMemory = 1,
    brokenDefinition = 2,
    badContent = 3,
    noTemporaryFile = 4,  // or the host refused event 1
};

// Answers event-specific: see HostEvent. `value` is a number or a pointer that is good for the time of the call.
// Events 8 and 9 are the last that a player raises. A host may call destroyPlayer from inside them.
using HostCallback = std::uint32_t (*)(HostContext& host, HostEvent event, std::uint32_t argument,
                                       std::uintptr_t value);

enum class ContentKind : std::uint32_t { paletteMovie = 17, movie = 33, stream = 49 };

// What goes with event 1.
struct ContentInfo {
    static constexpr std::uint32_t maximumPalette = 11;

    ContentKind kind = ContentKind::movie;
    std::uint32_t version = 0;
    std::uint32_t width = 0, height = 0;  // pixels
    std::uint8_t oldFormat = 0;     // 1: version 16 or less, or 21; else bit 1 of a "VIS" file's flags byte (0 or 2)
    std::uint8_t paletteCount = 0;  // as announced; the palette below holds at most maximumPalette of them
    std::uint32_t extra = 0;        // movies: the background colour (RGB565)
    std::uint8_t option1 = 0, option2 = 0;
    std::array<std::uint32_t, maximumPalette> palette{};  // RGB565 in the low 16 bits
};

// What goes with event 3: a frame of RGB565 words, rows top to bottom.
struct FrameRecord {
    const std::uint16_t* pixels = nullptr;
    std::uint32_t x = 0, y = 0;
    std::uint32_t width = 0, height = 0;
    std::uint32_t pitch = 0;  // bytes from one row to the next
};

}  // namespace qel
