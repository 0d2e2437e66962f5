// Bytes of a definition's body that a character keeps, as they arrive in pieces.
#pragma once

#include <algorithm>

#include "movie/content_reader.h"
#include "movie/pool.h"

namespace qel {

// Copies what `reader` holds behind the first `filled` bytes of `kept`. `done` when `kept` is full, `nothing` when more
// bytes are due.
inline Result copyPiece(PoolArray<std::uint8_t>& kept, std::uint32_t& filled, ContentReader& reader) {
    const std::span<const std::uint8_t> bytes = reader.take(std::min<std::size_t>(reader.left(), kept.size() - filled));
    std::copy(bytes.begin(), bytes.end(), kept.begin() + filled);
    filled += static_cast<std::uint32_t>(bytes.size());
    return filled == kept.size() ? Result::done : Result::nothing;
}

}  // namespace qel
