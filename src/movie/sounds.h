// The movie's two sound channels, which live with the host, and the sounds that they hold.
#pragma once

#include <cstdint>

#include "movie/result.h"
#include "movie/sound_character.h"

namespace qel {

struct Movie;

// What plays on a channel, or played: a channel holds its sound until the pass is over.
struct ChannelRecord {
    CharacterHold<Sound> sound;  // none: the channel is idle
    std::uint16_t id = 0;        // of the sound
};

// Plays a sound on the channel of its format, in the place of what played there. Formats without a channel are not
// played. outOfMemory: there is no such sound.
Result startSound(Movie& movie, std::uint16_t id, std::uint8_t volume);

// Stops a sound on both channels.
void stopSound(Movie& movie, std::uint16_t id);

// The volume of all sounds, 0 to 255; those that play follow at once, unless the movie is muted.
void setVolume(Movie& movie, std::uint8_t volume);
void setMute(Movie& movie, bool mute);

void pauseSounds(Movie& movie);
void resumeSounds(Movie& movie);

// Stops whatever plays on both channels, and lets go of the sounds.
void stopSounds(Movie& movie);

}  // namespace qel
