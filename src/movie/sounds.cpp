#include "movie/sounds.h"

#include "movie/movie.h"
#include "player/engine_services.h"

namespace qel {

void stopSounds(Movie& movie) {
    constexpr std::int32_t whateverPlays = -1;
    for (const SoundChannel channel : {SoundChannel::first, SoundChannel::second})
        services(*movie.player).stopSound(*movie.player->host, channel, whateverPlays);
}

}  // namespace qel
