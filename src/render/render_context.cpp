#include "render/render_context.h"

#include <algorithm>

#include "player/engine_services.h"
#include "render/pixel_rows.h"

namespace qel {

RenderContext::~RenderContext() {
    if (active.edges) freeToHeap(*player, active.edges);
}

Result makeRoomForEdge(RenderContext& context) {
    ActiveEdges& active = context.active;
    if (active.count < active.room) return Result::done;
    if (active.room == ActiveEdges::maximum) return Result::outOfMemory;
    constexpr std::uint32_t firstRoom = 70;
    const std::uint32_t room = std::clamp(active.room * 2, firstRoom, ActiveEdges::maximum);
    auto* grown = static_cast<ActiveEdge*>(allocateFromHeap(*context.player, room * sizeof(ActiveEdge)));
    if (!grown) return Result::outOfMemory;
    std::uninitialized_copy_n(active.edges, active.count, grown);
    if (active.edges) freeToHeap(*context.player, active.edges);
    active.edges = grown;
    active.room = room;
    return Result::done;
}

void clearArea(RenderContext& context, const Rect& area, std::uint16_t colour) {
    const auto width = static_cast<std::size_t>(area.xMax - area.xMin + 1);
    for (std::int32_t y = area.yMin; y <= area.yMax; ++y) storeColour({rowOf(context, y) + area.xMin, width}, colour);
}

}  // namespace qel
