// Fill and line styles: characters of their own, which shapes name by identifier and share.
#pragma once

#include <array>

#include "format/geometry.h"
#include "movie/character.h"
#include "movie/content_reader.h"

namespace qel {

enum class FillKind : std::uint8_t { solid = 0, gradient = 1, bitmap = 2 };

struct FillStyle : Character {
    FillKind fillKind = FillKind::solid;
    std::uint16_t order = 0;  // the identifier: of overlapping fills of one shape the higher is drawn
};

struct SolidFill : FillStyle {
    std::uint8_t alpha = 255;  // 255 is opaque
    std::uint16_t colour = 0;  // RGB565
};

enum class GradientType : std::uint8_t { linear, radial };

struct GradientStop {
    std::uint8_t ratio = 0;    // where on the ramp
    std::uint8_t alpha = 255;  // 255 is opaque
    std::uint16_t colour = 0;  // RGB565
};

// The colours between the stops, one for each index of the ramp.
struct GradientRamp {
    std::array<std::uint16_t, 256> colours{};  // RGB565
    std::array<std::uint8_t, 256> alphas{};
};

// Drawn over a plane of its own: a linear gradient runs from x = -128 to 127, a radial one from (0, 0) to radius 255.
struct GradientFill : FillStyle {
    GradientType type = GradientType::linear;
    bool hasAlpha = false;  // any stop is not opaque
    PoolArray<GradientStop> stops;
    Matrix matrix;  // from the plane to the shape
    GradientRamp ramp;
};

// Drawn with the pixels of a bitmap character.
struct BitmapFill : FillStyle {
    std::uint8_t alpha = 255;
    std::uint8_t flags = 0;  // 0: the bitmap repeats; otherwise it is cut off at its edges
    std::uint16_t bitmapId = noCharacter;
    Matrix matrix;  // from the bitmap's pixels to the shape
};

struct LineStyle : Character {
    std::uint8_t width = 0;  // pixels, 0 to 63
    std::uint8_t alpha = 255;
    std::uint16_t colour = 0;  // RGB565
};

// Decode the bodies of style records behind their identifier. Null in `style` with outOfMemory or brokenDefinition.
Result defineSolidFill(ContentReader body, std::uint16_t id, Pool& pool, PoolPtr<SolidFill>& style);
Result defineGradientFill(ContentReader body, std::uint16_t id, Pool& pool, PoolPtr<GradientFill>& style);
Result defineBitmapFill(ContentReader body, std::uint16_t id, Pool& pool, PoolPtr<BitmapFill>& style);
Result defineLineStyle(ContentReader body, Pool& pool, PoolPtr<LineStyle>& style);

constexpr bool isFillStyle(CharacterKind kind) {
    return kind == CharacterKind::solidFill || kind == CharacterKind::gradientFill || kind == CharacterKind::bitmapFill;
}

// An empty style of a fill's kind, with its order. Null when memory runs out.
template <class Style>
PoolPtr<Style> makeFill(Pool& pool, CharacterKind kind, FillKind fillKind, std::uint16_t order) {
    PoolPtr<Style> style = makeCharacter<Style>(pool, kind);
    if (!style) return style;
    style->fillKind = fillKind;
    style->order = order;
    return style;
}

}  // namespace qel
