#include "player/engine_services.h"

namespace qel {

bool createTemporaryContent(PlayerInstance& player, std::uint32_t length) {
    player.decompressedLength = length;
    return services(player).createTemporaryContent(*player.host, length);
}

bool writeTemporaryContent(PlayerInstance& player, std::span<const std::uint8_t> bytes) {
    return services(player).writeTemporaryContent(*player.host, bytes);
}

void switchToTemporaryContent(PlayerInstance& player) {
    player.contentLength = player.decompressedLength;
    services(player).switchToTemporaryContent(*player.host);
}

void presentFrame(PlayerInstance& player, std::uint32_t progress) {
    if (player.suppressPresent) return;
    const FrameRecord frame{.pixels = player.frameBuffer,
                            .width = player.frameWidth,
                            .height = player.frameHeight,
                            .pitch = player.frameWidth * 2};
    raiseEvent(player, HostEvent::presentFrame, 0, reinterpret_cast<std::uintptr_t>(&frame));
    raiseEvent(player, HostEvent::progress, 1, progress);
}

}  // namespace qel
