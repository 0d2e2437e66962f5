#include "author/huffman.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace qel::author {
namespace {

constexpr std::size_t package = ~std::size_t{0};

struct Item {
    std::uint64_t weight = 0;
    std::size_t symbol = package;  // a leaf is a symbol, a package joins two neighbours of the list below
};

using List = std::vector<Item>;

// The leaves that have a frequency, lightest first. Ties keep the symbols' order, so that the same frequencies always
// give the same code.
List leavesOf(std::span<const std::uint32_t> frequencies) {
    List leaves;
    for (std::size_t i = 0; i < frequencies.size(); ++i)
        if (frequencies[i] > 0) leaves.push_back({.weight = frequencies[i], .symbol = i});
    std::ranges::stable_sort(leaves, {}, &Item::weight);
    return leaves;
}

// The items of one list paired off in order, and the leaves once more.
List packaged(const List& below, const List& leaves) {
    List packages;
    for (std::size_t i = 0; i + 1 < below.size(); i += 2)
        packages.push_back({.weight = below[i].weight + below[i + 1].weight});
    List merged;
    std::ranges::merge(leaves, packages, std::back_inserter(merged), {}, &Item::weight, &Item::weight);
    return merged;
}

}  // namespace

// Package-merge: each list holds the leaves and the pairs of the list below it. A symbol's length is how often it lies
// in the 2n - 2 lightest items of the top list, packages unfolded.
std::vector<std::uint8_t> codeLengths(std::span<const std::uint32_t> frequencies, unsigned limit) {
    std::vector<std::uint32_t> weights(frequencies.begin(), frequencies.end());
    for (std::size_t i = 0; std::ranges::count_if(weights, [](std::uint32_t w) { return w > 0; }) < 2; ++i)
        weights[i] = std::max<std::uint32_t>(weights[i], 1);
    const List leaves = leavesOf(weights);
    std::vector<List> lists{leaves};
    while (lists.size() < limit) lists.push_back(packaged(lists.back(), leaves));

    std::vector<std::uint8_t> lengths(frequencies.size(), 0);
    std::size_t taken = 2 * leaves.size() - 2;
    for (; !lists.empty(); lists.pop_back()) {
        std::size_t takenBelow = 0;
        for (const Item& item : std::span(lists.back()).first(taken)) {
            if (item.symbol == package)
                takenBelow += 2;  // packages are in the order of what they hold, so it is again a front
            else
                ++lengths[item.symbol];
        }
        taken = takenBelow;
    }
    return lengths;
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
