// A sound character: what a definition keeps of a sound, and its data as the host's sound channels take them.
#pragma once

#include <optional>

#include "movie/character.h"
#include "movie/content_reader.h"
#include "player/services.h"

namespace qel {

struct Sound : Character {
    std::uint16_t sampleValue = 0;  // kept, nobody uses it
    std::uint8_t format = 0;
    std::uint8_t rateCode = 0;
    bool firstFlag = false, secondFlag = false;  // kept, nobody uses them
    std::uint8_t kept = 0;                       // handed to the host with the channel
    std::uint16_t loops = 1;
    PoolArray<std::uint8_t> data;
    std::uint32_t filled = 0;  // bytes of the data that are there
};

// The channel that sounds of a format play on. None: they are not played.
constexpr std::optional<SoundChannel> channelOf(std::uint8_t format) {
    switch (format) {
        case 8: return SoundChannel::first;
        case 0:
        case 4:
        case 5:
        case 7:
        case 10: return SoundChannel::second;
        default: return std::nullopt;
    }
}

// Reads the head of a body of `bodyLength` bytes; the reader is left on the data.
Result beginSound(ContentReader& body, std::uint32_t bodyLength, Pool& pool, PoolPtr<Sound>& sound);

// Takes as much of the data as `reader` holds. `done` when it is complete, `nothing` when more bytes are due.
Result continueSound(Sound& sound, ContentReader& reader);

}  // namespace qel
