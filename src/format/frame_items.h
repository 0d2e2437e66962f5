// The items of a frame record: one header byte (high four bits the type, low four bits the length of the body), then
// the body. A low half of 15 announces the length in a field of its own.
#pragma once

#include <cstdint>

namespace qel {

enum class FrameItemType : std::uint8_t {
    place = 1,              // u16 character, u8 depth
    remove = 2,             // u8 depth
    ratio = 3,              // u8 depth, u16 ratio
    colour = 4,             // u8 depth, full colour transform
    move = 5,               // u8 depth, matrix
    alpha = 6,              // u8 depth, u8 alpha
    startSound = 7,         // u16 sound
    stopSound = 8,          // u16 sound
    volume = 9,             // u8
    commands = 10,          // command list
    purgeOrderUpdate = 11,  // align; UB[5] n - 1; pairs UB[n] character, UB[n] position
    instanceNumber = 12,    // u16
    placeClip = 13,         // u16 character, u8 depth, flags, name, event handlers
    actions = 14,           // action code
};

inline constexpr unsigned longItemLength = 15;

// How many bytes hold the length of an item whose header's low half is longItemLength.
constexpr unsigned itemLengthBytes(unsigned type) { return type < 12 ? 2 : 4; }

}  // namespace qel
