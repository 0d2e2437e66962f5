// A shape where it stands on the screen: its outline in screen pixels, the edges made of it, and the styles that it is
// drawn with.
#pragma once

#include "render/edge_table.h"
#include "render/sampling.h"

namespace qel {

// One of the shape's fills, as this instance of it is drawn.
struct PlacedFill {
    const FillStyle* style = nullptr;  // the shape's, or `own`
    SamplingMatrix sampling;           // of gradients and bitmaps
    CharacterPtr own;                  // the style with the colours that were set on the instance

    // Of the fill pass that is running, which leaves every row cleared.
    PlacedFill* next = nullptr;  // link in the pass's list of the fills around the current position
    bool inside = false;         // in that list
};

// One of the shape's lines with the colours that were set on the instance.
struct PlacedLine {
    PoolPtr<LineStyle> own;
};

struct PlacedShape {
    PoolArray<PathSegment> segments;
    EdgeTable table;
    PoolArray<PlacedFill> fills;  // as the shape's
    PoolArray<PlacedLine> lines;  // as the shape's, or none: it is drawn with those
    bool recoloured = false;      // the fills and lines are the instance's own
    Rect outline;                 // the box around all points of `segments`
    Matrix transformedWith;       // the screen matrix of `segments`
    bool transformed = false;
};

// How points come to the screen: rounded to the nearest pixel, or each product cut off, as morphs do.
enum class PointRounding : std::uint8_t { nearest, cutOff };

// Brings the shape to a screen matrix: moves what is there when only the translation changed, else transforms the
// outline and rebuilds the edges. `bounds` gets the box around everything that is drawn (both maxima inclusive).
// outOfMemory: the shape has no edges and draws nothing.
Result placeShape(const ShapeGeometry& geometry, const Matrix& screenMatrix, PointRounding rounding, Pool& pool,
                  PlacedShape& placed, Rect& bounds);

// The line style that a group is drawn with, or null.
const LineStyle* lineDrawn(const ShapeGeometry& geometry, const PlacedShape& placed, const StyleGroup& group);

}  // namespace qel
