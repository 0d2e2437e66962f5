#include "render/render_context.h"

#include <algorithm>
#include <new>

#include "player/engine_services.h"

namespace qel {

RenderContext::~RenderContext() {
    while (blocks) {
        EdgeBlock* next = blocks->next;
        freeToHeap(*player, blocks);
        blocks = next;
    }
}

ActiveEdge* takeActiveEdge(RenderContext& context) {
    if (!context.freeEdges) {
        if (context.blockCount == EdgeBlock::maximumBlocks) return nullptr;
        void* memory = allocateFromHeap(*context.player, sizeof(EdgeBlock));
        if (!memory) return nullptr;
        auto* block = new (memory) EdgeBlock;
        block->next = context.blocks;
        context.blocks = block;
        ++context.blockCount;
        for (ActiveEdge& edge : block->edges) giveBackActiveEdge(context, &edge);
    }
    ActiveEdge* edge = context.freeEdges;
    context.freeEdges = edge->next;
    *edge = {};
    return edge;
}

void giveBackActiveEdge(RenderContext& context, ActiveEdge* edge) {
    edge->next = context.freeEdges;
    context.freeEdges = edge;
}

void clearArea(RenderContext& context, const Rect& area, std::uint16_t colour) {
    for (std::int32_t y = area.yMin; y <= area.yMax; ++y) {
        std::uint16_t* row = context.pixels + std::ptrdiff_t{y} * context.rowLength;
        std::fill(row + area.xMin, row + area.xMax + 1, colour);
    }
}

}  // namespace qel
