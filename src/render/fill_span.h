// Painting a run of pixels on one row with a fill.
#pragma once

#include "render/placed_shape.h"
#include "render/span.h"

namespace qel {

void fillSpan(const PlacedFill& fill, const Span& span);

}  // namespace qel
