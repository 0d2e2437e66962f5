// Expanding "ZVIS" content: chunk by chunk into the temporary content, from which it is then played.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "format/file_header.h"
#include "movie/pool.h"

namespace qel {

struct Movie;

// What is kept while content is being expanded.
struct Expansion {
    std::uint32_t expandedLength = 0;
    PoolArray<std::uint8_t> codeTables;   // shared by all chunks
    PoolArray<std::uint16_t> chunkSizes;  // compressed bytes
    std::uint32_t chunk = 0;              // index of the chunk that comes next
    std::uint32_t compressedDue = 0;      // bytes of a chunk that the next feed brings
    std::uint32_t produced = 0;           // bytes of that chunk that are expanded
    std::array<std::uint8_t, zvis::chunkSize> output;
};

// Reads the header at the start of the fed bytes and makes the temporary content ready.
Result beginExpansion(Movie& movie);

// Expands the chunk at the movie's reader, or as much of it as was fed, and leaves the next status.
Result expandChunk(Movie& movie);

// Expands the rest of a chunk, which the start of the newly fed bytes holds.
Result finishChunk(Movie& movie);

}  // namespace qel
