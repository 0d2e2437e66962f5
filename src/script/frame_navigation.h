// Scripts that move the timelines: the root's and those of clips.
#pragma once

#include "script/action_list.h"

namespace qel {

struct Movie;

// Frames as scripts count them, from 1.
std::uint32_t currentFrameOf(const Movie& movie, const Target& target);
std::uint32_t frameCountOf(const Movie& movie, const Target& target);

// The frame (0-based) of a label of the root's or of the clip's sprite; -1: there is none.
std::int32_t labelFrame(const Movie& movie, const Target& target, std::string_view label);

enum class AfterGoto : std::uint8_t { play, stop };

// Brings a timeline to a frame, 1-based; frames that it has not are ignored. The frame it shows already is not played
// again.
void gotoFrame(Movie& movie, const Target& target, double frame, AfterGoto after);

void setStopped(Movie& movie, const Target& target, bool stopped);

// Silences what plays.
void stopAllSounds(Movie& movie);

}  // namespace qel
