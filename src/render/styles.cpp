#include "render/styles.h"

#include "movie/structures.h"
#include "render/gradient_ramp.h"

namespace qel {

Result defineSolidFill(ContentReader body, std::uint16_t id, Pool& pool, PoolPtr<SolidFill>& style) {
    const std::uint16_t colour = readPackedColour(body, 0);
    const std::uint8_t alpha = body.u8();
    if (!body.ok()) return Result::brokenDefinition;
    style = makeFill<SolidFill>(pool, CharacterKind::solidFill, FillKind::solid, id);
    if (!style) return Result::outOfMemory;
    style->alpha = alpha;
    style->colour = colour;
    return Result::done;
}

Result defineGradientFill(ContentReader body, std::uint16_t id, Pool& pool, PoolPtr<GradientFill>& style) {
    PoolPtr<GradientFill> loading = makeFill<GradientFill>(pool, CharacterKind::gradientFill, FillKind::gradient, id);
    if (!loading) return Result::outOfMemory;
    body.align();
    loading->type = body.ub(2) == 0 ? GradientType::linear : GradientType::radial;
    const std::uint32_t format = body.ub(4);
    loading->matrix = readMatrix(body);
    const std::uint32_t count = body.u8();
    loading->hasAlpha = count == 0;  // nothing of it is opaque
    if (failed(loading->stops.assignZeros(pool, count))) return Result::outOfMemory;
    for (GradientStop& stop : loading->stops) {
        stop.ratio = body.u8();
        stop.colour = readColour(body, format, 0);
        stop.alpha = body.u8();
        loading->hasAlpha |= stop.alpha != 255;
    }
    if (!body.ok()) return Result::brokenDefinition;
    buildRamp(loading->stops.span(), loading->ramp);
    style = std::move(loading);
    return Result::done;
}

Result defineBitmapFill(ContentReader body, std::uint16_t id, Pool& pool, PoolPtr<BitmapFill>& style) {
    body.align();
    const auto flags = static_cast<std::uint8_t>(body.ub(2));
    const std::uint16_t bitmapId = body.u16();
    const Matrix matrix = readMatrix(body);
    if (!body.ok()) return Result::brokenDefinition;
    style = makeFill<BitmapFill>(pool, CharacterKind::bitmapFill, FillKind::bitmap, id);
    if (!style) return Result::outOfMemory;
    style->flags = flags;
    style->bitmapId = bitmapId;
    style->matrix = matrix;
    return Result::done;
}

Result defineLineStyle(ContentReader body, Pool& pool, PoolPtr<LineStyle>& style) {
    body.align();
    const std::uint32_t format = body.ub(4);
    const auto width = static_cast<std::uint8_t>(body.ub(6));
    const std::uint16_t colour = readColour(body, format, 0);
    const std::uint8_t alpha = body.u8();
    if (!body.ok()) return Result::brokenDefinition;
    style = makeCharacter<LineStyle>(pool, CharacterKind::lineStyle);
    if (!style) return Result::outOfMemory;
    style->width = width;
    style->alpha = alpha;
    style->colour = colour;
    return Result::done;
}

}  // namespace qel
