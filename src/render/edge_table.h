// The fill edges of one placed shape: its outline in screen pixels, cut so that every edge runs downward, in the order
// of their first rows. The rasterizer walks it from top to bottom.
#pragma once

#include <cstdint>

#include "format/geometry.h"
#include "movie/pool.h"
#include "render/shape.h"

namespace qel {

struct FillEdge {
    Point start, control, end;  // start.y < end.y; a straight edge has no control
    std::uint16_t fill0 = StyleGroup::none, fill1 = StyleGroup::none;  // of the shape's fills
    std::int8_t direction = 1;  // -1: the segment was turned round to run downward
    bool straight = true;
};

struct EdgeTable {
    PoolArray<FillEdge> edges;                  // by start.y
    std::int16_t top = 0, bottom = 0;           // the rows of the fill area
    std::uint16_t onlyFill = StyleGroup::none;  // the fill of every edge, where each has exactly this one
};

// A box that grows around points.
struct GrowingBox {
    std::int16_t xMin = 32767, yMin = 32767, xMax = -32768, yMax = -32768;

    bool empty() const { return xMin > xMax || yMin > yMax; }
    void takeX(std::int16_t x) {
        xMin = x < xMin ? x : xMin;
        xMax = x > xMax ? x : xMax;
    }
    void takeY(std::int16_t y) {
        yMin = y < yMin ? y : yMin;
        yMax = y > yMax ? y : yMax;
    }
    void take(Point point) {
        takeX(point.x);
        takeY(point.y);
    }
};

// Makes the edges of transformed segments, and grows `box` around what is drawn. outOfMemory: the table is empty.
Result buildEdges(const ShapeGeometry& geometry, std::span<const PathSegment> segments, Pool& pool, EdgeTable& table,
                  GrowingBox& box);

}  // namespace qel
