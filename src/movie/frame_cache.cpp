#include "movie/frame_cache.h"

#include "movie/body_copy.h"

namespace qel {

Result beginFrameCache(ContentReader& body, std::uint32_t bodyLength, std::uint32_t bodyOffset, Pool& pool,
                       PoolPtr<FrameCache>& cache) {
    if (bodyLength < frameCacheHead || !body.available(frameCacheHead)) return Result::brokenDefinition;
    PoolPtr<FrameCache> loading = makeCharacter<FrameCache>(pool, CharacterKind::frameCache);
    if (!loading) return Result::outOfMemory;
    body.u16();  // the identifier
    loading->frameNumber = body.u16();
    loading->itemsOffset = bodyOffset + frameCacheHead;
    if (failed(loading->items.assignZeros(pool, bodyLength - frameCacheHead))) return Result::outOfMemory;
    cache = std::move(loading);
    return Result::done;
}

Result continueFrameCache(FrameCache& cache, ContentReader& reader) {
    return copyPiece(cache.items, cache.filled, reader);
}

}  // namespace qel
