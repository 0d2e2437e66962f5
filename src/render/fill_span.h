// Painting a run of pixels on one row with a fill.
#pragma once

#include <cstdint>
#include <span>

#include "movie/result.h"
#include "render/styles.h"

namespace qel {

// Paints `run`, pixels of one row of the frame buffer.
Result fillSpan(const FillStyle& fill, std::span<std::uint16_t> run);

}  // namespace qel
