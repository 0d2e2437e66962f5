#include "movie/sprite.h"

#include <algorithm>

namespace qel {

Result beginSprite(ContentReader head, std::uint32_t headLength, std::uint32_t bodyLength, Pool& pool,
                   PoolPtr<Sprite>& sprite) {
    if (headLength < spriteHeadFields || headLength > bodyLength) return Result::brokenDefinition;
    PoolPtr<Sprite> loading = makePooled<Sprite>(pool);
    if (!loading) return Result::outOfMemory;
    loading->kind = CharacterKind::sprite;
    loading->pool = &pool;
    loading->frameCount = head.u16();
    loading->keyFrameCount = head.u16();
    if (!head.ok()) return Result::brokenDefinition;
    if (failed(loading->timeline.assignZeros(pool, bodyLength - headLength))) return Result::outOfMemory;
    sprite = std::move(loading);
    return Result::done;
}

Result continueSprite(Sprite& sprite, ContentReader& reader) {
    const auto count =
        static_cast<std::uint32_t>(std::min<std::size_t>(reader.left(), sprite.timeline.size() - sprite.filled));
    const std::span<const std::uint8_t> bytes = reader.take(count);
    std::copy(bytes.begin(), bytes.end(), sprite.timeline.begin() + sprite.filled);
    sprite.filled += count;
    return sprite.filled == sprite.timeline.size() ? Result::done : Result::nothing;
}

}  // namespace qel
