// Scan conversion: paints the fills of one placed shape, row by row, without anti-aliasing. Each fill is filled by its
// own even-odd rule; where fills of one shape overlap the one with the higher order is drawn. An edge covers the rows
// from its start up to, not including, its end; a span the pixels from its left crossing up to, not including, the
// right one.
#pragma once

#include "render/placed_shape.h"
#include "render/render_context.h"

namespace qel {

// Paints into `clip`, which lies inside the frame buffer (maxima inclusive). outOfMemory: no more active edges can be
// had; rows above are painted.
Result fillShape(RenderContext& context, PlacedShape& placed, const Rect& clip);

}  // namespace qel
