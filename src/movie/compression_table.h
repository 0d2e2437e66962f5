// A compression table character: the code tables that prime the inflater for compressed bitmap data.
#pragma once

#include "movie/character.h"
#include "movie/content_reader.h"

namespace qel {

struct CompressionTable : Character {
    PoolArray<std::uint8_t> description;  // of the tables, as a dynamic block's header has them
};

// Reads a whole body.
Result defineCompressionTable(ContentReader body, Pool& pool, PoolPtr<CompressionTable>& table);

}  // namespace qel
