// Huffman codes for deflate: lengths from frequencies, canonical codes from lengths.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace qel::author {

// The code lengths that cost the fewest bits with none longer than `limit`, a complete code. Every symbol with a
// frequency gets one, and where fewer than two have one the first symbols fill up. 0: the symbol has no code. There are
// at least two symbols, and at most 2 to the power of `limit` with a frequency.
std::vector<std::uint8_t> codeLengths(std::span<const std::uint32_t> frequencies, unsigned limit);

// The canonical codes of lengths of at most 15 bits, their bits in the order in which deflate writes them (lowest
// first).
std::vector<std::uint16_t> canonicalCodes(std::span<const std::uint8_t> lengths);

}  // namespace qel::author
