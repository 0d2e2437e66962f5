#include "movie/movie.h"

#include "movie/sounds.h"
#include "player/engine_services.h"

namespace qel {
namespace {

void* allocateForInflater(void* player, std::size_t size) {
    return allocateFromHeap(*static_cast<PlayerInstance*>(player), size);
}

void freeForInflater(void* player, void* block) { freeToHeap(*static_cast<PlayerInstance*>(player), block); }

bool purgeForPool(void* dictionary, std::uint32_t bytes) {
    return purgeCharacters(*static_cast<CharacterDictionary*>(dictionary), bytes);
}

}  // namespace

Movie::Movie(PlayerInstance& itsPlayer, std::uint32_t budget)
    : player(&itsPlayer),
      heap{.player = &itsPlayer},
      pool{.player = &itsPlayer, .budget = budget, .purge = purgeForPool, .purgeContext = &dictionary},
      dictionary(&itsPlayer, &pool),
      render(&itsPlayer) {
    const InflateMemory memory{.context = &itsPlayer, .allocate = allocateForInflater, .free = freeForInflater};
    inflaterReady = createInflater(inflater, memory);
}

Movie::~Movie() {
    if (!inflaterReady) return;  // it never came to play
    stopSounds(*this);
    destroyInflater(inflater);
}

}  // namespace qel
