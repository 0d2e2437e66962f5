#include "render/fill_span.h"

#include "render/gradient_span.h"

namespace qel {

void fillSpan(const PlacedFill& fill, const Span& span) {
    switch (fill.style->fillKind) {
        case FillKind::solid: {
            const auto& solid = static_cast<const SolidFill&>(*fill.style);
            blendColour(span.pixels, solid.colour, solid.alpha);
            break;
        }
        case FillKind::gradient:
            fillGradientSpan(static_cast<const GradientFill&>(*fill.style), fill.sampling, span);
            break;
        case FillKind::bitmap: break;  // no bitmap can be had
    }
}

}  // namespace qel
