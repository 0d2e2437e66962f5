// What every renderer of a movie shares: the frame buffer, and the store of active edges.
#pragma once

#include <cstdint>

#include "format/geometry.h"
#include "render/edge_table.h"

namespace qel {

struct PlayerInstance;

// An edge that crosses the current row. Active edges form a list from left to right.
struct ActiveEdge {
    const FillEdge* edge = nullptr;
    std::int32_t x = 0;      // 16.16
    std::int32_t slope = 0;  // 16.16, of the edge or of the current piece of a curve
    std::int32_t roundedX = 0;
    Point pieceStart, pieceEnd;  // curves
    std::int32_t t = 0, step = 0;
    ActiveEdge* previous = nullptr;
    ActiveEdge* next = nullptr;
};

// Active edges come from blocks of the general heap, made when they are needed and kept until the context ends.
struct EdgeBlock {
    static constexpr unsigned edgeCount = 70;
    static constexpr unsigned maximumBlocks = 100;

    ActiveEdge edges[edgeCount];
    EdgeBlock* next = nullptr;
};

struct RenderContext {
    PlayerInstance* player = nullptr;
    std::uint16_t* pixels = nullptr;  // RGB565, rows top to bottom; the host's
    std::int32_t rowLength = 0;       // pixels
    std::int32_t height = 0;          // rows

    EdgeBlock* blocks = nullptr;
    unsigned blockCount = 0;
    ActiveEdge* freeEdges = nullptr;

    explicit RenderContext(PlayerInstance* itsPlayer) : player(itsPlayer) {}
    RenderContext(const RenderContext&) = delete;
    ~RenderContext();
};

// The whole frame buffer, maxima inclusive. Empty (xMax below xMin) when there is none.
inline Rect screenRect(const RenderContext& context) {
    return {0, 0, static_cast<std::int16_t>(context.rowLength - 1), static_cast<std::int16_t>(context.height - 1)};
}

// An edge record, or null when the blocks are used up or the heap refuses one more.
ActiveEdge* takeActiveEdge(RenderContext& context);
void giveBackActiveEdge(RenderContext& context, ActiveEdge* edge);

// Fills part of the frame buffer with a colour. `area` lies inside it, maxima inclusive.
void clearArea(RenderContext& context, const Rect& area, std::uint16_t colour);

}  // namespace qel
