// Command lists (frame item 10, record 1 sub-record 1, command buttons): one header byte, then the body, whose first
// byte is the event code. The header's bits 7 to 2 are the command's number, bits 1 and 0 the size code: the body has
// code + 1 bytes, or, for code 3, as many (4 or more) as the next byte says.
#pragma once

#include <cstdint>
#include <string_view>

namespace qel {

enum class CommandNumber : std::uint8_t {
    gotoKeyFrame = 1,
    play = 2,
    gotoFirstKeyFrame = 3,
    stop = 4,
    requestStop = 5,
    soundOff = 6,
    soundOn = 7,
    startSound = 8,
    stopSound = 9,
    frameLoop = 10,
    openUrl = 11,
    vibrate = 12,
    scrollTo = 13,
    scrollBy = 14,
    resetView = 15,
    zoom = 16,
    focusNext = 17,
    focusPrevious = 18,
    selectTarget = 19,
    placeTarget = 20,
    removeTarget = 21,
    ratio = 22,
    colourTransform = 23,
    setMatrix = 24,
    moveBy = 25,
    alpha = 26,
    fade = 27,
    callNumber = 28,
};

// The first byte of a command's body: a key code, or one of these.
enum class CommandEvent : std::uint8_t { anyKey = 253, unhandledKey = 254, everyFrame = 255 };

// What tools call the events that are no keys.
struct CommandEventName {
    std::string_view name;
    CommandEvent event;
};
inline constexpr CommandEventName commandEventNames[] = {
    {"any-key", CommandEvent::anyKey},
    {"default", CommandEvent::unhandledKey},
    {"every-frame", CommandEvent::everyFrame},
};

inline constexpr unsigned longCommandSizeCode = 3;

}  // namespace qel
