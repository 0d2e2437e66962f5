// Drawing one placed shape: its fills, then its strokes.
#pragma once

#include "render/placed_shape.h"
#include "render/render_context.h"

namespace qel {

enum class ShapeKind : std::uint8_t { plain, morph };

// Draws into `clip`, which lies inside the frame buffer (maxima inclusive). A morph whose lines are all 0 pixels wide
// has no strokes; a plain shape draws such lines one pixel wide. outOfMemory: no more active edges can be had.
Result drawShape(RenderContext& context, ShapeKind kind, const ShapeGeometry& geometry, PlacedShape& placed,
                 const Rect& clip);

}  // namespace qel
