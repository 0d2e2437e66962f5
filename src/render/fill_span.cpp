#include "render/fill_span.h"

#include <algorithm>

#include "render/blend.h"

namespace qel {
namespace {

void fillSolid(const SolidFill& fill, std::span<std::uint16_t> run) {
    if (fill.alpha == 255) {
        std::fill(run.begin(), run.end(), fill.colour);
        return;
    }
    for (std::uint16_t& pixel : run) pixel = blend565(pixel, fill.colour, fill.alpha);
}

}  // namespace

Result fillSpan(const FillStyle& fill, std::span<std::uint16_t> run) {
    switch (fill.fillKind) {
        case FillKind::solid: fillSolid(static_cast<const SolidFill&>(fill), run); break;
        case FillKind::gradient:
        case FillKind::bitmap: break;  // no definition makes these kinds
    }
    return Result::done;
}

}  // namespace qel
