// The state word: where the movie stands in its life. The numbers are those of the device.
#pragma once

#include <cstdint>

namespace qel {

enum class Phase : std::uint8_t {
    reopen = 0,    // the expanded content is read from its start
    load = 1,      // headers, leading records, definitions: the steps are LoadStep
    play = 3,      // records of the timeline: the steps are PlayStep
    pace = 4,      // pacing, drawing, presenting: the steps are PaceStep
    dispatch = 5,  // keys and commands
    finish = 6,
    legacy = 8,  // the frame decoder of the older container
    frameActions = 10,
    queuedActions = 11,
    sniff = 14,  // magic, expansion of compressed content: the steps are SniffStep
};

enum class SniffStep : std::uint8_t { request = 1, recognise = 2, expandChunk = 3, finishChunk = 4 };

enum class LoadStep : std::uint8_t {
    header = 1,
    directory = 2,
    nameTable = 3,
    blockTable = 4,
    properties = 5,
    definitions = 6,
    frameBuffer = 7,
    startOfPlay = 8,
    rewind = 9,
};

enum class PlayStep : std::uint8_t { nextFrame = 1, cachedFrame = 5, stoppedRoot = 6 };

enum class PaceStep : std::uint8_t { wait = 1, draw = 2, present = 3 };

struct StateWord {
    Phase phase = Phase::sniff;        // bits 0 to 3
    std::uint8_t step = 1;             // bits 4 to 7
    bool frameLoopActive = false;      // bit 24
    bool startMuted = false;           // bit 25
    bool buttonChangePending = false;  // bit 26
    bool restartRequested = false;     // bit 27
    bool stopRequested = false;        // bit 28
    bool loop = false;                 // bit 29
    bool rootStopped = false;          // bit 30
    bool gotoPerformed = false;        // bit 31

    template <class Step>
    bool at(Phase somePhase, Step someStep) const {
        return phase == somePhase && step == static_cast<std::uint8_t>(someStep);
    }
    template <class Step>
    void enter(Phase nextPhase, Step nextStep) {
        phase = nextPhase;
        step = static_cast<std::uint8_t>(nextStep);
    }
};

}  // namespace qel
