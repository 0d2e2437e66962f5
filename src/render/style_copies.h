// The fills that a placed shape draws with once colours are set on it: copies of its own, so that the styles it shares
// with other shapes stay as they are.
#pragma once

#include "render/edge_table.h"

namespace qel {

// Sets colours on a placed shape: they apply to the fills as defined, whatever was set before. outOfMemory: the copies
// could not be made, and the shape draws as before.
Result recolourShape(const ShapeGeometry& geometry, const ColourTransform& colours, Pool& pool, PlacedShape& placed);

}  // namespace qel
