// The movie's two sound channels, which live with the host.
#pragma once

namespace qel {

struct Movie;

// Stops whatever plays on both channels.
void stopSounds(Movie& movie);

}  // namespace qel
