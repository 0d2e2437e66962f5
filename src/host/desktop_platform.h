// A window on this machine's desktop, its real clock, and files.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/platform.h"

namespace qel {

struct DesktopOptions {
    std::string title;
    int scale = 0;  // window pixels for one of the content when the window opens; 0: as large as fits well
};

class DesktopPlatform : public Platform {
  public:
    // Opens the window. Null where there is no display; `error` then says what the system said.
    static std::unique_ptr<DesktopPlatform> open(const DesktopOptions& options, std::string& error);

    // Waits for the next thing that the session has to hear of, keeping the window painted meanwhile. While the help on
    // keys is open the user sees no picture and the content should stand still: it opens with `pause`, closes with
    // `resume`, and takes the key that closes it for itself.
    struct Message {
        enum class Kind : std::uint8_t { timer, key, pause, resume, quit };
        Kind kind;
        std::uint8_t keyCode = 0;  // of `key`
    };
    virtual Message nextMessage() = 0;
};

}  // namespace qel
