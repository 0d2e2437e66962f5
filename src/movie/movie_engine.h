// The movie engine's door: what the front end calls. Every feed does one piece of work and leaves a LoadStatus behind
// that says what the engine needs next.
#pragma once

#include <cstdint>
#include <span>

#include "player/load_status.h"
#include "player/player.h"

namespace qel {

struct Movie;

// Null, with nothing left allocated, when memory runs out. `budget` bytes bound what the movie allocates, as counted on
// the device. `startMuted` is kept and not used: movies start with sound.
Movie* createMovie(PlayerInstance& player, std::uint32_t budget, bool loop, bool startMuted);

// Frees everything the movie holds. Null is allowed.
void destroyMovie(Movie* movie);

// Hands the movie the bytes it asked for, or none when its last status did not ask for any. The bytes must stay where
// they are until the next feed that brings bytes. The status is the movie's; the caller may change its code.
LoadStatus* feedMovie(Movie& movie, std::span<const std::uint8_t> bytes);

void requestMovieStop(Movie& movie);         // playback ends at the next safe point
void restartMovie(Movie& movie);             // play again from the start
void resynchroniseMovieClock(Movie& movie);  // after a pause: do not catch up
void prepareMovieDrain(Movie& movie);        // from here on nothing waits for its time
void handKeyToMovie(Movie& movie, std::uint32_t keyCode);

void pauseMovieSounds(Movie& movie);
void resumeMovieSounds(Movie& movie);
void muteMovie(Movie& movie, bool mute);

PlayerStatistics movieStatistics(const Movie& movie);

// `pixels` (RGB565, `width` words a row) is what frames are drawn into from now on; it stays the host's.
void attachMovieFrameBuffer(Movie& movie, std::uint16_t* pixels, std::uint16_t width, std::uint16_t height);

}  // namespace qel
