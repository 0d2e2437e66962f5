#include "movie/compression_table.h"

namespace qel {

Result defineCompressionTable(ContentReader body, Pool& pool, PoolPtr<CompressionTable>& table) {
    body.u16();  // the identifier
    if (!body.ok()) return Result::brokenDefinition;
    PoolPtr<CompressionTable> loading = makeCharacter<CompressionTable>(pool, CharacterKind::compressionTable);
    if (!loading) return Result::outOfMemory;
    if (failed(loading->description.assign(pool, body.rest()))) return Result::outOfMemory;
    table = std::move(loading);
    return Result::done;
}

}  // namespace qel
