// The 256 colours of a gradient, made of its stops.
#pragma once

#include <span>

#include "render/styles.h"

namespace qel {

// Fills the ramp from stops in ascending order. In front of the first stop and behind the last their colours go on; of
// stops at one place the earlier holds. Without stops the ramp is transparent.
void buildRamp(std::span<const GradientStop> stops, GradientRamp& ramp);

}  // namespace qel
