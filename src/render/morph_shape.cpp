#include "render/morph_shape.h"

namespace qel {

Result defineMorphShape(ContentReader body, Pool& pool, PoolPtr<MorphShape>& morph) {
    PoolPtr<MorphShape> loading = makeCharacter<MorphShape>(pool, CharacterKind::morphShape);
    if (!loading) return Result::outOfMemory;
    loading->startId = body.u16();
    loading->endId = body.u16();
    const std::uint32_t count = body.u8();
    body.align();
    const unsigned bits = body.ub(5);
    if (failed(loading->pairs.assignZeros(pool, count))) return Result::outOfMemory;
    for (StylePair& pair : loading->pairs) {
        pair.start = static_cast<std::uint16_t>(body.ub(bits));
        pair.end = static_cast<std::uint16_t>(body.ub(bits));
    }
    if (!body.ok()) return Result::brokenDefinition;
    morph = std::move(loading);
    return Result::done;
}

}  // namespace qel
