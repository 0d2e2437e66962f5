// Deflates the chunks of "ZVIS" content: all chunks share one set of code tables, whose description is stored once, and
// their dynamic blocks carry none.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::author {

inline constexpr std::size_t literalSymbols = 286;  // bytes, end of block, match lengths
inline constexpr std::size_t distanceSymbols = 30;

struct CodeTables {
    std::array<std::uint8_t, literalSymbols> literalLengths{};  // bits of each symbol's code; 0: it has none
    std::array<std::uint8_t, distanceSymbols> distanceLengths{};
    std::vector<std::uint8_t> description;  // as the body of a dynamic block's header; at most 207 bytes
};

// The tables that suit the chunks of `data` best. Every symbol that deflating them needs has a code, and all codes are
// complete. Matches never reach from one chunk into another. Throws std::invalid_argument when the chunks' size is 0.
CodeTables chooseCodeTables(std::span<const std::uint8_t> data, std::size_t chunkSize);

// How a chunk's one block is written.
enum class BlockChoice : std::uint8_t { best, stored, fixedCodes, sharedCodes };

// The zlib stream of one chunk of at most 65535 bytes. `best` takes the shortest of the others. Throws
// std::out_of_range when the shared codes are asked for and have no code for a symbol of the chunk.
std::vector<std::uint8_t> deflateWithTables(std::span<const std::uint8_t> chunk, const CodeTables& tables,
                                            BlockChoice choice = BlockChoice::best);

}  // namespace qel::author
