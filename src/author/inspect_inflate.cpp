#include "author/inspect_inflate.h"

#include <zlib.h>

#include <algorithm>

namespace qel::author::inspector {
namespace {

constexpr unsigned maxCodeLength = 15;
constexpr unsigned endOfBlock = 256;
constexpr int noSymbol = -1;

// Bits of a stream, least significant first. Past the end they are 0 and `past` says so.
struct BitSource {
    std::span<const std::uint8_t> bytes;
    std::size_t bit = 0;
    bool past = false;

    unsigned take(unsigned count) {
        unsigned value = 0;
        for (unsigned i = 0; i < count; ++i, ++bit) {
            if (bit / 8 >= bytes.size()) {
                past = true;
                return 0;
            }
            value |= (unsigned{bytes[bit / 8]} >> bit % 8 & 1u) << i;
        }
        return value;
    }
};

// False when more codes are listed than there is room for. Incomplete codes pass: their missing codes are caught in
// use.
bool buildCode(std::span<const std::uint8_t> lengths, HuffmanCode& code) {
    code.countOfLength.fill(0);
    for (const std::uint8_t length : lengths) ++code.countOfLength[length];
    code.countOfLength[0] = 0;
    int room = 1;
    std::array<std::uint16_t, maxCodeLength + 2> firstOfLength{};
    for (unsigned length = 1; length <= maxCodeLength; ++length) {
        room = room * 2 - code.countOfLength[length];
        if (room < 0) return false;
        firstOfLength[length + 1] = static_cast<std::uint16_t>(firstOfLength[length] + code.countOfLength[length]);
    }
    code.symbols.assign(lengths.size(), 0);
    for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
        if (lengths[symbol] == 0) continue;
        code.symbols[firstOfLength[lengths[symbol]]++] = static_cast<std::uint16_t>(symbol);
    }
    return true;
}

bool isComplete(const HuffmanCode& code) {
    int room = 1;
    for (unsigned length = 1; length <= maxCodeLength; ++length) room = room * 2 - code.countOfLength[length];
    return room == 0;
}

int takeSymbol(BitSource& source, const HuffmanCode& code) {
    int value = 0, first = 0, index = 0;
    for (unsigned length = 1; length <= maxCodeLength; ++length) {
        value |= static_cast<int>(source.take(1));
        if (source.past) return noSymbol;
        const int count = code.countOfLength[length];
        if (value - count < first) return code.symbols[static_cast<std::size_t>(index + value - first)];
        index += count;
        first = (first + count) << 1;
        value <<= 1;
    }
    return noSymbol;
}

SharedTables fixedTables() {
    std::array<std::uint8_t, 288> lengths;
    for (unsigned symbol = 0; symbol < lengths.size(); ++symbol) {
        lengths[symbol] = symbol < 144 ? 8 : symbol < 256 ? 9 : symbol < 280 ? 7 : 8;
    }
    SharedTables tables;
    buildCode(lengths, tables.literals);
    std::array<std::uint8_t, 30> distances;
    distances.fill(5);
    buildCode(distances, tables.distances);
    return tables;
}

const char* copyStored(BitSource& source, std::size_t due, std::vector<std::uint8_t>& output) {
    source.bit = (source.bit + 7) / 8 * 8;
    const unsigned length = source.take(16), inverse = source.take(16);
    if (source.past) return "the data ends inside a block";
    if (length != (inverse ^ 0xFFFF)) return "a stored block's two lengths contradict each other";
    if (length > source.bytes.size() - source.bit / 8) return "the data ends inside a block";
    if (length > due - output.size()) return "it expands to more bytes than are due";
    const auto begin = source.bytes.begin() + static_cast<std::ptrdiff_t>(source.bit / 8);
    output.insert(output.end(), begin, begin + length);
    source.bit += std::size_t{length} * 8;
    return nullptr;
}

struct Bases {
    std::array<std::uint16_t, 30> base{};
    std::array<std::uint8_t, 30> extraBits{};
};

// Each base follows from the one before by the range its extra bits span. Symbol 285 stands for 258 alone.
constexpr Bases lengthBases = [] {
    Bases b;
    unsigned base = 3;
    for (unsigned i = 0; i < 28; ++i) {
        b.base[i] = static_cast<std::uint16_t>(base);
        b.extraBits[i] = static_cast<std::uint8_t>(i < 8 ? 0 : i / 4 - 1);
        base += 1u << b.extraBits[i];
    }
    b.base[28] = 258;
    return b;
}();

constexpr Bases distanceBases = [] {
    Bases b;
    unsigned base = 1;
    for (unsigned i = 0; i < 30; ++i) {
        b.base[i] = static_cast<std::uint16_t>(base);
        b.extraBits[i] = static_cast<std::uint8_t>(i < 4 ? 0 : i / 2 - 1);
        base += 1u << b.extraBits[i];
    }
    return b;
}();
static_assert(lengthBases.base[27] == 227 && distanceBases.base[29] == 24577);

const char* expandCodes(BitSource& source, const SharedTables& tables, std::size_t due,
                        std::vector<std::uint8_t>& output) {
    for (;;) {
        const int symbol = takeSymbol(source, tables.literals);
        if (source.past) return "the data ends inside a block";
        if (symbol == noSymbol || symbol >= 286) return "a code stands for nothing";
        if (symbol == endOfBlock) return nullptr;
        if (symbol < static_cast<int>(endOfBlock)) {
            if (output.size() == due) return "it expands to more bytes than are due";
            output.push_back(static_cast<std::uint8_t>(symbol));
            continue;
        }
        const auto index = static_cast<std::size_t>(symbol) - 257;
        const std::size_t length = lengthBases.base[index] + source.take(lengthBases.extraBits[index]);
        const int distanceSymbol = takeSymbol(source, tables.distances);
        if (!source.past && (distanceSymbol == noSymbol || distanceSymbol >= 30))
            return "a distance code stands for nothing";
        const auto far = static_cast<std::size_t>(source.past ? 0 : distanceSymbol);
        const std::size_t distance = distanceBases.base[far] + source.take(distanceBases.extraBits[far]);
        if (source.past) return "the data ends inside a block";
        if (distance > output.size()) return "a copy reaches back before the chunk's start";
        if (length > due - output.size()) return "it expands to more bytes than are due";
        for (std::size_t i = 0; i < length; ++i) output.push_back(output[output.size() - distance]);
    }
}

const char* checkZlibHeader(std::span<const std::uint8_t> stream) {
    if (stream.size() < 2) return "it has no room for a zlib header";
    if ((stream[0] & 15) != 8) return "its compression method is not deflate";
    if (stream[0] >> 4 > 7) return "its window size is invalid";
    if ((stream[0] * 256 + stream[1]) % 31 != 0) return "its zlib header fails its check";
    return nullptr;
}

}  // namespace

const char* parseSharedTables(std::span<const std::uint8_t> description, SharedTables& tables) {
    static constexpr std::uint8_t order[] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
    BitSource source{.bytes = description};
    const unsigned literalCount = source.take(5) + 257, distanceCount = source.take(5) + 1,
                   lengthCount = source.take(4) + 4;
    if (literalCount > 286 || distanceCount > 30) return "too many codes";
    std::array<std::uint8_t, 19> codeLengths{};
    for (unsigned i = 0; i < lengthCount; ++i) codeLengths[order[i]] = static_cast<std::uint8_t>(source.take(3));
    HuffmanCode lengthCode;
    if (!buildCode(codeLengths, lengthCode) || !isComplete(lengthCode))
        return "the code of the code lengths is no code";

    std::array<std::uint8_t, 286 + 30> lengths{};
    const unsigned total = literalCount + distanceCount;
    for (unsigned filled = 0; filled < total;) {
        const int symbol = takeSymbol(source, lengthCode);
        if (source.past || symbol == noSymbol) return "the code lengths are cut off";
        if (symbol < 16) {
            lengths[filled++] = static_cast<std::uint8_t>(symbol);
            continue;
        }
        if (symbol == 16 && filled == 0) return "the first code length repeats one before it";
        const std::uint8_t repeated = symbol == 16 ? lengths[filled - 1] : std::uint8_t{0};
        const unsigned times = symbol == 16   ? 3 + source.take(2)
                               : symbol == 17 ? 3 + source.take(3)
                                              : 11 + source.take(7);
        if (source.past) return "the code lengths are cut off";
        if (times > total - filled) return "more code lengths than codes";
        std::fill_n(lengths.begin() + filled, times, repeated);
        filled += times;
    }
    if (lengths[endOfBlock] == 0) return "no code ends a block";
    const std::span<const std::uint8_t> all{lengths};
    // A lone code of one bit may stay incomplete: data may use a single distance, or none.
    const auto usable = [](const HuffmanCode& code) {
        const auto sum =
            std::count_if(code.countOfLength.begin() + 2, code.countOfLength.end(), [](auto n) { return n != 0; });
        return isComplete(code) || (sum == 0 && code.countOfLength[1] <= 1);
    };
    if (!buildCode(all.first(literalCount), tables.literals) || !usable(tables.literals))
        return "the literal code is no code";
    if (!buildCode(all.subspan(literalCount, distanceCount), tables.distances) || !usable(tables.distances)) {
        return "the distance code is no code";
    }
    return nullptr;
}

const char* inflateShared(std::span<const std::uint8_t> stream, const SharedTables& tables, std::size_t due,
                          std::vector<std::uint8_t>& output) {
    static const SharedTables fixed = fixedTables();
    output.clear();
    if (const char* wrong = checkZlibHeader(stream)) return wrong;
    BitSource source{.bytes = stream, .bit = 16};
    for (bool last = false; !last;) {
        last = source.take(1) != 0;
        const unsigned kind = source.take(2);
        if (source.past) return "the data ends before its last block";
        const char* wrong = nullptr;
        if (kind == 3) return "a block is of no known kind";
        if (kind == 0)
            wrong = copyStored(source, due, output);
        else
            wrong = expandCodes(source, kind == 1 ? fixed : tables, due, output);
        if (wrong) return wrong;
    }
    if (output.size() < due) return "it expands to fewer bytes than are due";
    const std::size_t sumAt = (source.bit + 7) / 8;
    if (stream.size() - sumAt < 4) return "its check sum is cut off";
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < 4; ++i) sum = sum << 8 | stream[sumAt + i];
    if (sum != adler32(adler32(0, nullptr, 0), output.data(), static_cast<uInt>(output.size())))
        return "its check sum is wrong";
    if (stream.size() - sumAt > 4) return "it ends before its chunk does";
    return nullptr;
}

}  // namespace qel::author::inspector
