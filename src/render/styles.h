// Fill and line styles: characters of their own, which shapes name by identifier and share.
#pragma once

#include "format/geometry.h"
#include "movie/character.h"
#include "movie/content_reader.h"

namespace qel {

enum class FillKind : std::uint8_t { solid = 0, gradient = 1, bitmap = 2 };

// What the rasterizer needs of every fill style. The first four fields belong to the fill pass that is running: a style
// serves one pass at a time, and leaves every row cleared.
struct FillStyle : Character {
    bool inside = false;        // the pass is inside this fill
    FillStyle* next = nullptr;  // link in the pass's list of active fills
    FillKind fillKind = FillKind::solid;
    std::uint16_t order = 0;  // the identifier: of overlapping fills of one shape the higher is drawn
};

struct SolidFill : FillStyle {
    std::uint8_t alpha = 255;  // 255 is opaque
    std::uint16_t colour = 0;  // RGB565
};

struct LineStyle : Character {
    std::uint8_t width = 0;  // pixels, 0 to 63
    std::uint8_t alpha = 255;
    std::uint16_t colour = 0;  // RGB565
};

// Decode the bodies of style records behind their identifier. Null in `style` with outOfMemory or badContent.
Result defineSolidFill(ContentReader body, std::uint16_t id, Pool& pool, PoolPtr<SolidFill>& style);
Result defineLineStyle(ContentReader body, Pool& pool, PoolPtr<LineStyle>& style);

}  // namespace qel
