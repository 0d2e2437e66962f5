// The styles that a placed shape draws with once colours are set on it: copies of its own, so that the styles it shares
// with other shapes stay as they are.
#pragma once

#include "render/placed_shape.h"

namespace qel {

// Sets colours on a shape that has its place: they apply to the styles as defined, whatever was set before.
// outOfMemory: the copies could not be made, and the shape draws as before.
Result recolourShape(const ShapeGeometry& geometry, const ColourTransform& colours, Pool& pool, PlacedShape& placed);

}  // namespace qel
