#include "author/deflate.h"

#include <zlib.h>

#include <algorithm>
#include <stdexcept>

#include "author/byte_writer.h"
#include "author/huffman.h"

namespace qel::author {
namespace {

constexpr std::size_t endOfBlock = 256;
constexpr unsigned longestCode = 15;

// A match length or distance as deflate writes it: a symbol and the extra bits behind it.
struct Field {
    std::size_t symbol = 0;
    std::uint32_t extra = 0;
    unsigned extraBits = 0;
};

// Lengths 3 to 258: eight symbols of their own, then four for each width of extra bits; 258 has the last symbol.
Field lengthField(std::size_t length) {
    constexpr std::size_t shortest = 3, longest = 258, firstSymbol = 257, ownSymbols = 8;
    if (length == longest) return {literalSymbols - 1, 0, 0};
    const std::size_t value = length - shortest;
    if (value < ownSymbols) return {firstSymbol + value, 0, 0};
    unsigned bits = 1;
    while (value >> (bits + 3) != 0) ++bits;
    return {firstSymbol + 4 * bits + (value >> bits), static_cast<std::uint32_t>(value & ((1u << bits) - 1)), bits};
}

// Distances from 1: four symbols of their own, then two for each width of extra bits.
Field distanceField(std::size_t distance) {
    const std::size_t value = distance - 1;
    if (value < 4) return {value, 0, 0};
    unsigned bits = 1;
    while (value >> (bits + 2) != 0) ++bits;
    return {2 * bits + (value >> bits), static_cast<std::uint32_t>(value & ((1u << bits) - 1)), bits};
}

// A literal byte, or a match of earlier bytes of the chunk.
struct Token {
    std::uint8_t literal = 0;
    std::uint16_t length = 0;  // 0: a literal
    std::uint16_t distance = 0;
};

std::size_t matchLength(std::span<const std::uint8_t> chunk, std::size_t earlier, std::size_t at) {
    constexpr std::size_t longest = 258;
    const std::size_t most = std::min(longest, chunk.size() - at);
    std::size_t length = 0;
    while (length < most && chunk[earlier + length] == chunk[at + length]) ++length;
    return length;
}

// Earlier places that begin with the same three bytes, the nearest first.
class Matcher {
  public:
    explicit Matcher(std::span<const std::uint8_t> chunk)
        : chunk_(chunk), heads_(buckets, none), chain_(chunk.size(), none) {}

    void add(std::size_t at) {
        if (at + 3 > chunk_.size()) return;
        chain_[at] = heads_[bucket(at)];
        heads_[bucket(at)] = at;
    }

    Token longest(std::size_t at) const {
        constexpr std::size_t window = 32768;
        Token best{.literal = chunk_[at]};
        if (at + 3 > chunk_.size()) return best;
        int patience = 128;
        for (std::size_t earlier = heads_[bucket(at)]; earlier != none && patience-- > 0; earlier = chain_[earlier]) {
            if (at - earlier > window) break;
            const std::size_t length = matchLength(chunk_, earlier, at);
            if (length < 3 || length <= best.length) continue;
            best.length = static_cast<std::uint16_t>(length);
            best.distance = static_cast<std::uint16_t>(at - earlier);
        }
        return best;
    }

  private:
    static constexpr std::size_t none = ~std::size_t{0}, buckets = 4096;
    std::size_t bucket(std::size_t at) const {
        return (chunk_[at] * 31u * 31u + chunk_[at + 1] * 31u + chunk_[at + 2]) % buckets;
    }

    std::span<const std::uint8_t> chunk_;
    std::vector<std::size_t> heads_, chain_;
};

std::vector<Token> tokenize(std::span<const std::uint8_t> chunk) {
    std::vector<Token> tokens;
    Matcher matcher(chunk);
    for (std::size_t at = 0; at < chunk.size();) {
        const Token token = matcher.longest(at);
        tokens.push_back(token);
        const std::size_t length = std::max<std::size_t>(token.length, 1);
        for (const std::size_t end = at + length; at < end; ++at) matcher.add(at);
    }
    return tokens;
}

// Deflate's bit order: the lowest bit of a byte first.
class BitSink {
  public:
    void put(std::uint32_t value, unsigned bits) {
        for (unsigned i = 0; i < bits; ++i, ++used_) {
            if (used_ % 8 == 0) bytes_.push_back(0);
            bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | (value >> i & 1) << (used_ % 8));
        }
    }
    void align() { used_ = bytes_.size() * 8; }
    Bytes take() { return std::move(bytes_); }

  private:
    Bytes bytes_;
    std::size_t used_ = 0;
};

struct Codes {
    std::span<const std::uint8_t> lengths;
    std::vector<std::uint16_t> codes;
    explicit Codes(std::span<const std::uint8_t> ofLengths) : lengths(ofLengths), codes(canonicalCodes(ofLengths)) {}

    void put(BitSink& sink, std::size_t symbol) const {
        if (lengths[symbol] == 0) throw std::out_of_range("a symbol without a code");
        sink.put(codes[symbol], lengths[symbol]);
    }
};

void putTokens(BitSink& sink, std::span<const Token> tokens, const Codes& literals, const Codes& distances) {
    for (const Token& token : tokens) {
        if (token.length == 0) {
            literals.put(sink, token.literal);
            continue;
        }
        const Field length = lengthField(token.length), distance = distanceField(token.distance);
        literals.put(sink, length.symbol);
        sink.put(length.extra, length.extraBits);
        distances.put(sink, distance.symbol);
        sink.put(distance.extra, distance.extraBits);
    }
    literals.put(sink, endOfBlock);
}

// Runs of code lengths: 16 repeats the one before, 17 and 18 are runs of zeros.
struct Run {
    std::uint8_t symbol = 0;
    std::uint8_t extra = 0, extraBits = 0;
};

std::vector<Run> runsOf(std::span<const std::uint8_t> lengths) {
    std::vector<Run> runs;
    for (std::size_t at = 0; at < lengths.size();) {
        const std::uint8_t value = lengths[at];
        std::size_t count = 1;
        while (at + count < lengths.size() && lengths[at + count] == value) ++count;
        at += count;
        if (value != 0) {
            runs.push_back({value});
            --count;
        }
        const std::size_t longest = value == 0 ? 138 : 6;
        while (count >= 3) {
            const std::size_t taken = std::min(count, longest);
            if (value != 0)
                runs.push_back({16, static_cast<std::uint8_t>(taken - 3), 2});
            else if (taken <= 10)
                runs.push_back({17, static_cast<std::uint8_t>(taken - 3), 3});
            else
                runs.push_back({18, static_cast<std::uint8_t>(taken - 11), 7});
            count -= taken;
        }
        for (; count > 0; --count) runs.push_back({value});
    }
    return runs;
}

// The body of a dynamic block's header for these lengths. It is never longer than 207 bytes: what codeLengths gives
// costs no more than 5 bits for each of the 19 symbols would, so each of the 316 lengths takes 5 bits or, in a run,
// fewer.
Bytes describe(const CodeTables& tables) {
    constexpr std::size_t lengthSymbols = 19;
    constexpr std::array<std::uint8_t, lengthSymbols> order{16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                            11, 4,  12, 3, 13, 2, 14, 1, 15};
    constexpr unsigned longestLengthCode = 7;
    Bytes lengths(tables.literalLengths.begin(), tables.literalLengths.end());
    lengths.insert(lengths.end(), tables.distanceLengths.begin(), tables.distanceLengths.end());
    const std::vector<Run> runs = runsOf(lengths);
    std::array<std::uint32_t, lengthSymbols> frequencies{};
    for (const Run& run : runs) ++frequencies[run.symbol];
    const Bytes codeLengthLengths = codeLengths(frequencies, longestLengthCode);
    const Codes codes(codeLengthLengths);

    BitSink sink;
    sink.put(literalSymbols - 257, 5);
    sink.put(distanceSymbols - 1, 5);
    sink.put(lengthSymbols - 4, 4);
    for (const std::uint8_t symbol : order) sink.put(codeLengthLengths[symbol], 3);
    for (const Run& run : runs) {
        codes.put(sink, run.symbol);
        sink.put(run.extra, run.extraBits);
    }
    return sink.take();
}

void putStored(BitSink& sink, std::span<const std::uint8_t> chunk) {
    const auto length = static_cast<std::uint32_t>(chunk.size());
    sink.put(1, 3);
    sink.align();
    sink.put(length, 16);
    sink.put(~length & 0xFFFF, 16);
    for (const std::uint8_t byte : chunk) sink.put(byte, 8);
}

void putFixed(BitSink& sink, std::span<const Token> tokens) {
    Bytes literals(288, 8);
    std::fill(literals.begin() + 144, literals.begin() + 256, std::uint8_t{9});
    std::fill(literals.begin() + 256, literals.begin() + 280, std::uint8_t{7});
    const Bytes distances(32, 5);
    sink.put(1 | 1 << 1, 3);
    putTokens(sink, tokens, Codes(literals), Codes(distances));
}

void putShared(BitSink& sink, std::span<const Token> tokens, const CodeTables& tables) {
    sink.put(1 | 2 << 1, 3);
    putTokens(sink, tokens, Codes(tables.literalLengths), Codes(tables.distanceLengths));
}

bool hasAllCodes(std::span<const Token> tokens, const CodeTables& tables) {
    return tables.literalLengths[endOfBlock] != 0 && std::ranges::all_of(tokens, [&](const Token& token) {
               if (token.length == 0) return tables.literalLengths[token.literal] != 0;
               return tables.literalLengths[lengthField(token.length).symbol] != 0 &&
                      tables.distanceLengths[distanceField(token.distance).symbol] != 0;
           });
}

Bytes writeBlock(std::span<const std::uint8_t> chunk, std::span<const Token> tokens, const CodeTables& tables,
                 BlockChoice choice) {
    BitSink sink;
    switch (choice) {
        case BlockChoice::stored: putStored(sink, chunk); break;
        case BlockChoice::fixedCodes: putFixed(sink, tokens); break;
        case BlockChoice::sharedCodes: putShared(sink, tokens, tables); break;
        case BlockChoice::best: break;
    }
    return sink.take();
}

Bytes shortestBlock(std::span<const std::uint8_t> chunk, std::span<const Token> tokens, const CodeTables& tables) {
    Bytes shortest = writeBlock(chunk, tokens, tables, BlockChoice::stored);
    for (const BlockChoice choice : {BlockChoice::fixedCodes, BlockChoice::sharedCodes}) {
        if (choice == BlockChoice::sharedCodes && !hasAllCodes(tokens, tables)) continue;
        Bytes block = writeBlock(chunk, tokens, tables, choice);
        if (block.size() < shortest.size()) shortest = std::move(block);
    }
    return shortest;
}

}  // namespace

CodeTables chooseCodeTables(std::span<const std::uint8_t> data, std::size_t chunkSize) {
    if (chunkSize == 0) throw std::invalid_argument("chunks of no bytes");
    std::array<std::uint32_t, literalSymbols> literals{};
    std::array<std::uint32_t, distanceSymbols> distances{};
    literals[endOfBlock] = 1;
    for (std::size_t start = 0; start < data.size(); start += chunkSize) {
        ++literals[endOfBlock];
        for (const Token& token : tokenize(data.subspan(start, std::min(chunkSize, data.size() - start)))) {
            if (token.length == 0) {
                ++literals[token.literal];
                continue;
            }
            ++literals[lengthField(token.length).symbol];
            ++distances[distanceField(token.distance).symbol];
        }
    }
    CodeTables tables;
    std::ranges::copy(codeLengths(literals, longestCode), tables.literalLengths.begin());
    std::ranges::copy(codeLengths(distances, longestCode), tables.distanceLengths.begin());
    tables.description = describe(tables);
    return tables;
}

std::vector<std::uint8_t> deflateWithTables(std::span<const std::uint8_t> chunk, const CodeTables& tables,
                                            BlockChoice choice) {
    constexpr std::size_t mostBytes = 65535;
    if (chunk.size() > mostBytes) throw std::length_error("a chunk of more than 65535 bytes");
    const std::vector<Token> tokens = tokenize(chunk);
    const Bytes block =
        choice == BlockChoice::best ? shortestBlock(chunk, tokens, tables) : writeBlock(chunk, tokens, tables, choice);
    const uLong checksum = adler32(adler32(0, nullptr, 0), chunk.data(), static_cast<uInt>(chunk.size()));
    ByteWriter stream;
    stream.u8(0x78).u8(0x01).bytes(block);  // deflate, a window of 32 KB
    for (const unsigned shift : {24u, 16u, 8u, 0u}) stream.u8(static_cast<std::uint32_t>(checksum >> shift) & 0xFF);
    return stream.take();
}

}  // namespace qel::author
