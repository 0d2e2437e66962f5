// The decoder of the older frame-by-frame container, and of movies below version 16: its entry points.
#pragma once

#include <cstdint>
#include <span>

#include "movie/result.h"

namespace qel {

// Hands the decoder the bytes it asked for. This player has no pictures of that container to show: every content of it
// is bad content.
Result feedLegacyDecoder(std::span<const std::uint8_t> bytes);

}  // namespace qel
