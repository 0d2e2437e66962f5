// The shared code tables and the streams written with them, judged by stock zlib.
#include "author/deflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>

#include "author/huffman.h"

namespace qel::author {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t chunkSize = 2048;

std::map<std::string, Bytes> samples() {
    std::string text;
    for (int i = 0; i < 500; ++i) text += "frame " + std::to_string(i * i) + (i % 3 ? " places\n" : " moves ");
    std::minstd_rand random(7);
    Bytes noise(3 * chunkSize), gradient(5000);
    for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(random() >> 8);
    for (std::size_t i = 0; i < gradient.size(); ++i) gradient[i] = static_cast<std::uint8_t>(i * i / 700);
    Bytes farRepeat = noise;  // repeats the first bytes only
    farRepeat.resize(40000);
    std::iota(farRepeat.begin() + 6144, farRepeat.end(), std::uint8_t{0});
    farRepeat.insert(farRepeat.end(), noise.begin(), noise.end());
    return {{"nothing", {}},
            {"one byte", {9}},
            {"zeros", Bytes(chunkSize + 1, 0)},
            {"text", {text.begin(), text.end()}},
            {"noise", noise},
            {"gradient", gradient},
            {"repeats farther apart than the window", farRepeat}};
}

std::vector<Bytes> chunksOf(const Bytes& data, std::size_t size) {
    std::vector<Bytes> chunks;
    for (std::size_t start = 0; start == 0 || start < data.size(); start += size)
        chunks.emplace_back(data.begin() + static_cast<std::ptrdiff_t>(start),
                            data.begin() + static_cast<std::ptrdiff_t>(std::min(start + size, data.size())));
    return chunks;
}

// A zlib stream with its own tables, made of one whose single dynamic block leaves them out.
Bytes withOwnTables(const Bytes& stream, const Bytes& description) {
    Bytes bits;  // one each
    const auto put = [&](const Bytes& from, std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) bits.push_back(from[i / 8] >> (i % 8) & 1);
    };
    const auto pack = [&] {
        Bytes packed((bits.size() + 7) / 8);
        for (std::size_t i = 0; i < bits.size(); ++i)
            packed[i / 8] = static_cast<std::uint8_t>(packed[i / 8] | bits[i] << (i % 8));
        return packed;
    };
    constexpr std::size_t headerEnd = 16 + 3;  // of the stream and of the block
    put(stream, 0, headerEnd);
    put(description, 0, description.size() * 8);

    // The description's last byte may hold padding: zlib says where the tables end.
    Bytes head = pack();
    z_stream reader{};
    Bytef nothing = 0;
    EXPECT_EQ(inflateInit(&reader), Z_OK);
    reader.next_in = head.data();
    reader.avail_in = static_cast<uInt>(head.size());
    reader.next_out = &nothing;
    for (int call = 0; call < 3 && (reader.data_type & 256) == 0; ++call) {
        EXPECT_EQ(inflate(&reader, Z_TREES), Z_OK);
    }
    const std::size_t tablesEnd = reader.total_in * 8 - static_cast<std::size_t>(reader.data_type & 63);
    EXPECT_TRUE(reader.data_type & 256) << (reader.msg ? reader.msg : "");
    inflateEnd(&reader);
    EXPECT_EQ((tablesEnd - headerEnd + 7) / 8, description.size());
    bits.resize(tablesEnd);
    put(stream, headerEnd, (stream.size() - 4) * 8);
    Bytes whole = pack();
    whole.insert(whole.end(), stream.end() - 4, stream.end());
    return whole;
}

// What stock zlib makes of the stream. Up to a byte of padding may lie in front of the checksum when tables were put
// in, so that is compared by hand.
Bytes stockInflated(const Bytes& stream) {
    Bytes output(70000);
    z_stream reader{};
    EXPECT_EQ(inflateInit2(&reader, -15), Z_OK);
    reader.next_in = const_cast<Bytef*>(stream.data()) + 2;
    reader.avail_in = static_cast<uInt>(stream.size() - 2);
    reader.next_out = output.data();
    reader.avail_out = static_cast<uInt>(output.size());
    EXPECT_EQ(inflate(&reader, Z_FINISH), Z_STREAM_END) << (reader.msg ? reader.msg : "");
    output.resize(reader.total_out);
    inflateEnd(&reader);
    std::uint32_t checksum = 0;
    for (std::size_t i = stream.size() - 4; i < stream.size(); ++i) checksum = checksum << 8 | stream[i];
    EXPECT_EQ(checksum, adler32(1, output.data(), static_cast<uInt>(output.size())));
    return output;
}

// 2 to the power of 15 for a complete code.
std::size_t codeSpace(std::span<const std::uint8_t> lengths) {
    std::size_t sum = 0;
    for (const std::uint8_t length : lengths) sum += length == 0 ? 0 : std::size_t{1} << (15 - length);
    return sum;
}

TEST(Deflate, EveryChunkExpandsWithTheSharedTablesAlone) {
    for (const auto& [name, data] : samples()) {
        for (const std::size_t size : {chunkSize, std::size_t{65535}, std::size_t{100}}) {
            const CodeTables tables = chooseCodeTables(data, size);
            for (const Bytes& chunk : chunksOf(data, size)) {
                const Bytes stream = deflateWithTables(chunk, tables, BlockChoice::sharedCodes);
                ASSERT_EQ(stockInflated(withOwnTables(stream, tables.description)), chunk) << name << ", " << size;
            }
        }
    }
}

TEST(Deflate, TheSharedCodesAreCompleteAndShort) {
    for (const auto& [name, data] : samples()) {
        const CodeTables tables = chooseCodeTables(data, chunkSize);
        EXPECT_LE(std::ranges::max(tables.literalLengths), 15) << name;
        EXPECT_EQ(codeSpace(tables.literalLengths), 1u << 15) << name;
        EXPECT_EQ(codeSpace(tables.distanceLengths), 1u << 15) << name;
        EXPECT_LE(tables.description.size(), 207u) << name;
    }
}

TEST(Deflate, OtherBlocksAreOrdinaryStreams) {
    for (const auto& [name, data] : samples()) {
        const CodeTables tables = chooseCodeTables(data, 65535);
        for (const Bytes& chunk : chunksOf(data, 65535)) {
            const Bytes stored = deflateWithTables(chunk, tables, BlockChoice::stored);
            const Bytes fixed = deflateWithTables(chunk, tables, BlockChoice::fixedCodes);
            const Bytes shared = deflateWithTables(chunk, tables, BlockChoice::sharedCodes);
            EXPECT_EQ(stockInflated(stored), chunk) << name;
            EXPECT_EQ(stockInflated(fixed), chunk) << name;
            EXPECT_EQ(deflateWithTables(chunk, tables).size(), std::min({stored.size(), fixed.size(), shared.size()}));
        }
    }
}

TEST(Deflate, SharingTablesBeatsTablesInEveryChunk) {
    const Bytes text = samples()["text"];
    const CodeTables tables = chooseCodeTables(text, chunkSize);
    std::size_t ours = tables.description.size(), stock = 0;
    for (const Bytes& chunk : chunksOf(text, chunkSize)) {
        ours += deflateWithTables(chunk, tables).size();
        Bytes packed(4096);
        uLongf size = packed.size();
        ASSERT_EQ(compress2(packed.data(), &size, chunk.data(), chunk.size(), 9), Z_OK);
        stock += size;
    }
    EXPECT_LT(ours, stock);
}

TEST(Deflate, ForeignTablesAreUsedOnlyWhereTheyHaveEveryCode) {
    const CodeTables ofZeros = chooseCodeTables(Bytes(50, 0), chunkSize);
    const Bytes other{1, 2, 3, 4, 5, 6};
    EXPECT_THROW(deflateWithTables(other, ofZeros, BlockChoice::sharedCodes), std::out_of_range);
    EXPECT_EQ(stockInflated(deflateWithTables(other, ofZeros)), other);
    EXPECT_EQ(stockInflated(deflateWithTables({}, CodeTables{})), Bytes{});
    EXPECT_THROW(deflateWithTables(Bytes(65536, 0), ofZeros), std::length_error);
    EXPECT_THROW(chooseCodeTables(other, 0), std::invalid_argument);
}

// The cheapest complete code for these frequencies, found by trying all.
std::uint64_t leastCost(std::span<const std::uint32_t> frequencies, unsigned limit, std::size_t at = 0,
                        std::uint32_t space = 1u << 15) {
    if (at == frequencies.size()) return space == 0 ? 0 : UINT32_MAX;
    std::uint64_t least = UINT32_MAX;
    for (unsigned length = 1; length <= limit; ++length) {
        const std::uint32_t taken = 1u << (15 - length);
        if (taken <= space)
            least = std::min(
                least, length * std::uint64_t{frequencies[at]} + leastCost(frequencies, limit, at + 1, space - taken));
    }
    return least;
}

TEST(Huffman, NoOtherCodeWithinTheLimitIsCheaper) {
    std::minstd_rand random(3);
    for (int round = 0; round < 60; ++round) {
        std::vector<std::uint32_t> frequencies(2 + random() % 6);
        for (std::uint32_t& each : frequencies) each = 1 + static_cast<std::uint32_t>(1u << random() % 12);
        for (const unsigned limit : {3u, 4u, 5u}) {
            const Bytes lengths = codeLengths(frequencies, limit);
            std::uint64_t cost = 0;
            for (std::size_t i = 0; i < lengths.size(); ++i) cost += std::uint64_t{frequencies[i]} * lengths[i];
            EXPECT_LE(std::ranges::max(lengths), limit);
            EXPECT_EQ(codeSpace(lengths), 1u << 15);
            EXPECT_EQ(cost, leastCost(frequencies, limit)) << "round " << round << ", limit " << limit;
        }
    }
    std::vector<std::uint32_t> fibonacci{1, 1};  // without a limit the longest code has 21 bits
    while (fibonacci.size() < 22) fibonacci.push_back(fibonacci.end()[-1] + fibonacci.end()[-2]);
    const Bytes lengths = codeLengths(fibonacci, 15);
    EXPECT_EQ(std::ranges::max(lengths), 15);
    EXPECT_EQ(codeSpace(lengths), 1u << 15);
    EXPECT_EQ(codeLengths(std::vector<std::uint32_t>{0, 0, 0}, 7), (Bytes{1, 1, 0}));
    EXPECT_EQ(codeLengths(std::vector<std::uint32_t>{0, 0, 8}, 7), (Bytes{1, 0, 1}));
}

}  // namespace
}  // namespace qel::author
