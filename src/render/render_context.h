// What every renderer of a movie shares: the frame buffer, and the store of active edges.
#pragma once

#include <cstdint>

#include "format/geometry.h"
#include "render/edge_table.h"

namespace qel {

struct PlayerInstance;

// An edge that crosses the current row.
struct ActiveEdge {
    std::int32_t x = 0;      // 16.16, on the current row
    std::int32_t slope = 0;  // 16.16, of the edge or of the current piece of a curve
    const FillEdge* edge = nullptr;
    Point pieceEnd;                // of the current piece of a curve, or of the edge
    std::int16_t t = 0, step = 0;  // of a curve
};

// The active edges of the shape that is being filled, from left to right. They lie on the general heap; the store grows
// as far as the device's does and is kept until the context ends.
struct ActiveEdges {
    static constexpr std::uint32_t maximum = 70 * 100;  // the device takes 100 blocks of 70 at most

    ActiveEdge* edges = nullptr;
    std::uint32_t count = 0, room = 0;
};

struct RenderContext {
    PlayerInstance* player = nullptr;
    std::uint16_t* pixels = nullptr;  // RGB565, rows top to bottom; the host's
    std::int32_t rowLength = 0;       // pixels
    std::int32_t height = 0;          // rows
    ActiveEdges active;

    explicit RenderContext(PlayerInstance* itsPlayer) : player(itsPlayer) {}
    RenderContext(const RenderContext&) = delete;
    ~RenderContext();
};

// The whole frame buffer, maxima inclusive. Empty (xMax below xMin) when there is none.
inline Rect screenRect(const RenderContext& context) {
    return {0, 0, static_cast<std::int16_t>(context.rowLength - 1), static_cast<std::int16_t>(context.height - 1)};
}

inline std::uint16_t* rowOf(const RenderContext& context, std::int32_t y) {
    return context.pixels + std::ptrdiff_t{y} * context.rowLength;
}

// Room for one more active edge. outOfMemory: the device has no more, or the heap refuses it.
Result makeRoomForEdge(RenderContext& context);

// Fills part of the frame buffer with a colour. `area` lies inside it, maxima inclusive.
void clearArea(RenderContext& context, const Rect& area, std::uint16_t colour);

}  // namespace qel
