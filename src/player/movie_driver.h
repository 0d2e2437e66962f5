// The movie side of the front end: the operations of the movie engine, and the loop that moves content bytes from the
// host into the engine and turns the engine's load status into host events.
#pragma once

#include "player/player_instance.h"

namespace qel {

extern const EngineOperations movieOperations;

}  // namespace qel
