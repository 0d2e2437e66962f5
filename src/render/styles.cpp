#include "render/styles.h"

#include "movie/structures.h"

namespace qel {

Result defineSolidFill(ContentReader body, std::uint16_t id, Pool& pool, PoolPtr<SolidFill>& style) {
    const std::uint16_t colour = readPackedColour(body, 0);
    const std::uint8_t alpha = body.u8();
    if (!body.ok()) return Result::badContent;
    style = makePooled<SolidFill>(pool);
    if (!style) return Result::outOfMemory;
    style->kind = CharacterKind::solidFill;
    style->pool = &pool;
    style->fillKind = FillKind::solid;
    style->order = id;
    style->alpha = alpha;
    style->colour = colour;
    return Result::done;
}

Result defineLineStyle(ContentReader body, Pool& pool, PoolPtr<LineStyle>& style) {
    body.align();
    const std::uint32_t format = body.ub(4);
    const auto width = static_cast<std::uint8_t>(body.ub(6));
    const std::uint16_t colour = readColour(body, format, 0);
    const std::uint8_t alpha = body.u8();
    if (!body.ok()) return Result::badContent;
    style = makePooled<LineStyle>(pool);
    if (!style) return Result::outOfMemory;
    style->kind = CharacterKind::lineStyle;
    style->pool = &pool;
    style->width = width;
    style->alpha = alpha;
    style->colour = colour;
    return Result::done;
}

}  // namespace qel
