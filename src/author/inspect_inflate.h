// Inflate with shared code tables, written for the inspector alone so that its reading owes nothing to the player's: a
// small bit-by-bit decoder with canonical Huffman codes. It is not made for speed; no chunk is larger than 2048 bytes.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::author::inspector {

// A canonical Huffman code: how many codes have each length, and the symbols in the order of their codes.
struct HuffmanCode {
    std::array<std::uint16_t, 16> countOfLength{};
    std::vector<std::uint16_t> symbols;
};

// What the dynamic blocks of all streams are decoded with.
struct SharedTables {
    HuffmanCode literals, distances;
};

// Reads a table description: the body of a dynamic block's header. nullptr, or what is wrong with it; `tables` may be
// half-filled then.
const char* parseSharedTables(std::span<const std::uint8_t> description, SharedTables& tables);

// Expands one zlib stream to exactly `due` bytes and checks its sum. It must take all of `stream`. nullptr, or what is
// wrong; `output` then holds the bytes before that.
const char* inflateShared(std::span<const std::uint8_t> stream, const SharedTables& tables, std::size_t due,
                          std::vector<std::uint8_t>& output);

}  // namespace qel::author::inspector
