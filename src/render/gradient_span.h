// Painting a run of pixels with a gradient.
#pragma once

#include "render/sampling.h"
#include "render/span.h"
#include "render/styles.h"

namespace qel {

void fillGradientSpan(const GradientFill& fill, const SamplingMatrix& sampling, const Span& span);

}  // namespace qel
