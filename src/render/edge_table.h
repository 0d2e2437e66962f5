// The fill edges of one placed shape: its outline in screen pixels, cut so that every edge runs downward, in the order
// of their first rows. The rasterizer walks it from top to bottom.
#pragma once

#include <cstdint>

#include "format/geometry.h"
#include "movie/pool.h"
#include "render/shape.h"

namespace qel {

struct FillEdge {
    bool straight = true;
    std::int8_t direction = 1;  // -1: the segment was turned round to run downward
    Point start, control, end;  // start.y <= end.y; a straight edge has no control
    FillStyle* fill0 = nullptr;
    FillStyle* fill1 = nullptr;
};

struct EdgeTable {
    PoolArray<FillEdge> edges;
    PoolArray<FillEdge*> sorted;       // by start.y
    std::int16_t top = 0, bottom = 0;  // the rows of the fill area
};

// A fill of the placed shape's own, made of one that it shares.
struct FillCopy {
    const FillStyle* source = nullptr;
    PoolPtr<SolidFill> copy;
};

// A placed shape's own part: its segments in screen pixels and the edges made of them.
struct PlacedShape {
    PoolArray<PathSegment> segments;
    EdgeTable table;
    PoolArray<FillCopy> fillCopies;  // none: it draws with the shape's fills
    Rect outline;                    // the box around all points of `segments`
    Matrix transformedWith;          // the screen matrix of `segments`
    bool transformed = false;
};

// The fill that stands for one of the shape's.
FillStyle* fillDrawn(const PlacedShape& placed, FillStyle* fill);

// Brings the placed shape to a screen matrix: moves what is there when only the translation changed, else transforms
// the shape's outline and rebuilds the edges. `bounds` gets the box around everything that is drawn (both maxima
// inclusive). outOfMemory: the shape has no edges and draws nothing.
Result placeShape(const ShapeGeometry& geometry, const Matrix& screenMatrix, Pool& pool, PlacedShape& placed,
                  Rect& bounds);

}  // namespace qel
