#include "render/style_copies.h"

#include "render/colour_transform.h"

namespace qel {
namespace {

CharacterPtr copyFill(const FillStyle& source, Pool& pool) {
    switch (source.fillKind) {
        case FillKind::solid:
            return CharacterPtr(makeFill<SolidFill>(pool, source.kind, source.fillKind, source.order).release());
        case FillKind::gradient:
            return CharacterPtr(makeFill<GradientFill>(pool, source.kind, source.fillKind, source.order).release());
        case FillKind::bitmap:
            return CharacterPtr(makeFill<BitmapFill>(pool, source.kind, source.fillKind, source.order).release());
    }
    return {};
}

Result makeFillCopies(const ShapeGeometry& geometry, Pool& pool, PoolArray<PlacedFill>& fills) {
    for (std::uint32_t i = 0; i < fills.size(); ++i) {
        fills[i].own = copyFill(*geometry.fills[i].style, pool);
        if (!fills[i].own) return Result::outOfMemory;
    }
    return Result::done;
}

Result makeLineCopies(const ShapeGeometry& geometry, Pool& pool, PoolArray<PlacedLine>& lines) {
    if (failed(lines.reserve(pool, geometry.lines.size()))) return Result::outOfMemory;
    for (std::uint32_t i = 0; i < geometry.lines.size(); ++i) {
        PlacedLine line{.own = makeCharacter<LineStyle>(pool, CharacterKind::lineStyle)};
        if (!line.own) return Result::outOfMemory;
        lines.appendReserved(std::move(line));
    }
    return Result::done;
}

// One copy of every style that the groups name.
Result makeCopies(const ShapeGeometry& geometry, Pool& pool, PlacedShape& placed) {
    if (failed(makeFillCopies(geometry, pool, placed.fills)) || failed(makeLineCopies(geometry, pool, placed.lines))) {
        for (PlacedFill& fill : placed.fills) fill.own.reset();
        placed.lines.clear();
        return Result::outOfMemory;
    }
    for (PlacedFill& fill : placed.fills) fill.style = static_cast<FillStyle*>(fill.own.get());
    placed.recoloured = true;
    return Result::done;
}

void applyToGradient(const ColourTransform& colours, const GradientFill& source, GradientFill& copy) {
    copy.type = source.type;
    copy.hasAlpha = true;
    copy.matrix = source.matrix;
    for (std::size_t i = 0; i < source.ramp.colours.size(); ++i) {
        copy.ramp.colours[i] = transformColour(colours, source.ramp.colours[i]);
        copy.ramp.alphas[i] = transformAlpha(colours, source.ramp.alphas[i]);
    }
}

void applyToFill(const ColourTransform& colours, const FillStyle& source, Character& copy) {
    switch (source.fillKind) {
        case FillKind::solid: {
            const auto& from = static_cast<const SolidFill&>(source);
            auto& to = static_cast<SolidFill&>(copy);
            to.colour = transformColour(colours, from.colour);
            to.alpha = transformAlpha(colours, from.alpha);
            break;
        }
        case FillKind::gradient:
            applyToGradient(colours, static_cast<const GradientFill&>(source), static_cast<GradientFill&>(copy));
            break;
        case FillKind::bitmap: {  // its colours are changed pixel by pixel as it is drawn
            const auto& from = static_cast<const BitmapFill&>(source);
            auto& to = static_cast<BitmapFill&>(copy);
            to.flags = from.flags;
            to.bitmapId = from.bitmapId;
            to.matrix = from.matrix;
            to.alpha = transformAlpha(colours, from.alpha);
            break;
        }
    }
}

}  // namespace

Result recolourShape(const ShapeGeometry& geometry, const ColourTransform& colours, Pool& pool, PlacedShape& placed) {
    if (!placed.recoloured) {
        if (colours == ColourTransform{}) return Result::done;
        if (failed(makeCopies(geometry, pool, placed))) return Result::outOfMemory;
    }
    for (std::uint32_t i = 0; i < geometry.fills.size(); ++i)
        applyToFill(colours, *geometry.fills[i].style, *placed.fills[i].own);
    for (std::uint32_t i = 0; i < geometry.lines.size(); ++i) {
        const LineStyle& source = *geometry.lines[i].style;
        LineStyle& line = *placed.lines[i].own;
        line.width = source.width;
        line.colour = transformColour(colours, source.colour);
        line.alpha = transformAlpha(colours, source.alpha);
    }
    return Result::done;
}

}  // namespace qel
