// What an engine may ask of the platform: the services of its host, reached through the player instance, and the two
// events that an engine raises itself.
#pragma once

#include <cstdint>
#include <span>

#include "player/player_instance.h"
#include "player/services.h"

namespace qel {

inline const PlatformServices& services(const PlayerInstance& player) { return *player.host->services; }

inline std::uint32_t tickCount(const PlayerInstance& player) { return services(player).tickCount(*player.host); }

// Reads exactly `to.size()` bytes of content; false when the host cannot bring them all.
inline bool readContent(const PlayerInstance& player, std::uint32_t offset, std::span<std::uint8_t> to) {
    return services(player).readContent(*player.host, offset, static_cast<std::uint32_t>(to.size()), to.data());
}

// The general heap. Null when there is no memory.
inline void* allocateFromHeap(const PlayerInstance& player, std::size_t size) {
    return services(player).allocate(*player.host, size);
}
inline void freeToHeap(const PlayerInstance& player, void* block) { services(player).free(*player.host, block); }

// The place for expanded content: created for `length` bytes, written from its start, then read instead of the file.
// Switching makes `length` the player's content length.
bool createTemporaryContent(PlayerInstance& player, std::uint32_t length);
bool writeTemporaryContent(PlayerInstance& player, std::span<const std::uint8_t> bytes);
void switchToTemporaryContent(PlayerInstance& player);

// Hands the frame buffer to the host (event 3), then reports the progress (event 6, 0 to 255).
void presentFrame(PlayerInstance& player, std::uint32_t progress);

}  // namespace qel
