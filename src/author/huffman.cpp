#include "author/huffman.h"

#include <algorithm>
#include <array>
#include <queue>

namespace qel::author {
namespace {

struct Node {
    std::uint64_t weight;
    std::size_t index;  // breaks ties, so that the same frequencies always give the same code
    bool operator>(const Node& other) const {
        return weight != other.weight ? weight > other.weight : index > other.index;
    }
};

// The depth of each symbol in the Huffman tree of those with a frequency.
std::vector<unsigned> treeDepths(std::span<const std::uint32_t> frequencies) {
    const std::size_t count = frequencies.size();
    std::vector<std::size_t> parents(2 * count, 0);
    std::priority_queue<Node, std::vector<Node>, std::greater<>> open;
    for (std::size_t i = 0; i < count; ++i)
        if (frequencies[i] > 0) open.push({frequencies[i], i});
    std::size_t next = count;
    while (open.size() > 1) {
        const Node first = open.top();
        open.pop();
        const Node second = open.top();
        open.pop();
        parents[first.index] = parents[second.index] = next;
        open.push({first.weight + second.weight, next++});
    }
    const std::size_t root = open.top().index;
    std::vector<unsigned> depths(2 * count, 0);
    for (std::size_t i = root; i-- > 0;)  // parents lie behind their children
        if (i >= count || frequencies[i] > 0) depths[i] = depths[parents[i]] + 1;
    depths.resize(count);
    return depths;
}

}  // namespace

std::vector<std::uint8_t> codeLengths(std::span<const std::uint32_t> frequencies, unsigned limit) {
    std::vector<std::uint32_t> weights(frequencies.begin(), frequencies.end());
    for (std::size_t i = 0; std::ranges::count_if(weights, [](std::uint32_t w) { return w > 0; }) < 2; ++i)
        weights[i] = std::max<std::uint32_t>(weights[i], 1);
    // Flatter weights give a shallower tree; equal weights give the shallowest.
    for (;;) {
        const std::vector<unsigned> depths = treeDepths(weights);
        if (*std::ranges::max_element(depths) <= limit) return {depths.begin(), depths.end()};
        for (std::uint32_t& weight : weights) weight = (weight + 1) / 2;
    }
}

std::vector<std::uint16_t> canonicalCodes(std::span<const std::uint8_t> lengths) {
    constexpr unsigned longest = 15;
    std::array<unsigned, longest + 1> count{}, next{};
    for (const std::uint8_t length : lengths) ++count[length];
    count[0] = 0;
    for (unsigned bits = 1; bits <= longest; ++bits) next[bits] = (next[bits - 1] + count[bits - 1]) << 1;
    std::vector<std::uint16_t> codes(lengths.size(), 0);
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        const unsigned bits = lengths[i];
        if (bits == 0) continue;
        unsigned value = next[bits]++, reversed = 0;
        for (unsigned bit = 0; bit < bits; ++bit, value >>= 1) reversed = reversed << 1 | (value & 1);
        codes[i] = static_cast<std::uint16_t>(reversed);
    }
    return codes;
}

}  // namespace qel::author
