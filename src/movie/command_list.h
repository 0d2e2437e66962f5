// Command lists as they are kept: each command with its internal code and a copy of its body.
#pragma once

#include <cstdint>

#include "movie/content_reader.h"
#include "movie/pool.h"

namespace qel {

// What a command does; the numbers are the device's.
enum class CommandCode : std::uint8_t {
    requestStop = 0,
    openUrl = 1,
    callNumber = 2,
    soundOn = 3,
    soundOff = 4,
    scrollTo = 5,
    scrollBy = 6,
    resetView = 7,
    zoom = 8,
    gotoKeyFrame = 9,
    play = 10,
    gotoFirstKeyFrame = 11,
    stop = 12,
    frameLoop = 13,
    selectTarget = 14,
    placeTarget = 15,
    removeTarget = 16,
    ratio = 17,
    colourTransform = 18,
    setMatrix = 19,
    moveBy = 20,
    alpha = 21,
    fade = 22,
    startSound = 23,
    stopSound = 24,
    vibrate = 25,
    focusNext = 26,
    focusPrevious = 27,
};

struct Command {
    CommandCode code = CommandCode::requestStop;
    // As stored, at least the event code, which comes first; a zero behind it so that a text in it ends.
    PoolArray<std::uint8_t> body;
};

using CommandList = PoolArray<Command>;

// Appends the commands of a list that fills `reader`. Numbers that mean no command are passed over. badContent: a
// command runs past the list; outOfMemory. In both cases the commands before it stay.
Result readCommands(ContentReader reader, Pool& pool, CommandList& list);

}  // namespace qel
