// What a session needs of the system it runs on: files, a clock, one timer, a place to show frames, a log. A session is
// handed one platform and calls nothing else of the system.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "player/host_context.h"
#include "player/services.h"

namespace qel {

class Platform {
  public:
    virtual ~Platform() = default;

    // Files. Handles come from openContent and createTemporary, which answer invalidFile when there is none to be had.
    virtual FileHandle openContent(const std::string& path) = 0;    // for reading
    virtual FileHandle createTemporary(std::string_view name) = 0;  // for both, always empty at first
    virtual bool readFile(FileHandle file, std::uint32_t offset, std::span<std::uint8_t> to) = 0;  // all or false
    virtual bool appendToFile(FileHandle file, std::span<const std::uint8_t> bytes) = 0;           // all or false
    virtual void closeFile(FileHandle file) = 0;  // a temporary file may be gone afterwards

    // Clock. Each call of tickCount is one that the player asked for: a virtual clock counts them.
    virtual std::uint32_t tickCount() = 0;  // milliseconds, wraps at 2^32
    virtual Date date() = 0;                // UTC
    virtual TimeOfDay timeOfDay() = 0;      // UTC

    // The one timer. Setting it replaces it; it fires again and again until it is killed. Whoever runs the platform's
    // loop hands its message to Session::timerFired.
    virtual void setTimer(std::uint32_t milliseconds) = 0;
    virtual void killTimer() = 0;

    // Shows a frame. `staging` has room for the frame in any format of up to 4 bytes a pixel, to convert it in.
    // False when the frame could not be shown; playback goes on.
    virtual bool present(const FrameRecord& frame, std::span<std::uint8_t> staging) = 0;

    virtual void log(std::u16string_view text) = 0;
};

}  // namespace qel
