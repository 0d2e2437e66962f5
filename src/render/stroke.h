// Strokes: lines drawn straight from the segments of a placed shape, in order, each over what is there.
#pragma once

#include "render/placed_shape.h"
#include "render/render_context.h"

namespace qel {

// Draws all lines of the shape into `clip`, which lies inside the frame buffer (maxima inclusive). Lines are cut at the
// edges of the screen, so what `clip` shows is the same however small it is.
void strokeShape(RenderContext& context, const ShapeGeometry& geometry, const PlacedShape& placed, const Rect& clip);

}  // namespace qel
