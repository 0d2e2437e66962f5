#include "author/inspect_inflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

namespace qel::author::inspector {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Bits in the order of deflate, least significant first.
struct BitSink {
    Bytes bytes;
    std::size_t bit = 0;
    void put(unsigned value, unsigned count) {
        for (unsigned i = 0; i < count; ++i, ++bit) {
            if (bit % 8 == 0) bytes.push_back(0);
            bytes.back() = static_cast<std::uint8_t>(bytes.back() | (value >> i & 1) << bit % 8);
        }
    }
};

Bytes sampleText() {
    std::string text;
    for (int i = 0; i < 120; ++i) text += "frame " + std::to_string(i * i) + (i % 3 ? " places\n" : " moves ");
    text.resize(1500);
    return {text.begin(), text.end()};
}

Bytes zlibStream(const Bytes& data, int level, int strategy) {
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, level, Z_DEFLATED, 15, 9, strategy), Z_OK);
    Bytes out(data.size() + 1000);
    stream.next_in = const_cast<Bytef*>(data.data());
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

struct Split {
    Bytes tables, stream;
};

// Takes the code tables out of a zlib stream of one dynamic block, as sharing them asks for. Stock zlib itself says
// where the tables and the data end.
Split splitTables(const Bytes& whole) {
    constexpr int afterTables = 256, afterBlock = 128, lastBlock = 64, unusedBits = 63;
    Bytes output(4000);
    z_stream reader{};
    EXPECT_EQ(inflateInit(&reader), Z_OK);
    reader.next_in = const_cast<Bytef*>(whole.data());
    reader.avail_in = static_cast<uInt>(whole.size());
    reader.next_out = output.data();
    reader.avail_out = static_cast<uInt>(output.size());
    const auto runTo = [&reader](int mark) {
        for (int call = 0; call < 4; ++call) {
            EXPECT_EQ(inflate(&reader, Z_TREES), Z_OK);
            if ((reader.data_type & mark) == mark) break;
        }
        return reader.total_in * 8 - static_cast<std::size_t>(reader.data_type & unusedBits);
    };
    const std::size_t begin = 16 + 3, tablesEnd = runTo(afterTables), dataEnd = runTo(afterBlock | lastBlock);
    inflateEnd(&reader);
    BitSink tables, stream;
    for (std::size_t bit = 0; bit < dataEnd; ++bit) {
        (bit >= begin && bit < tablesEnd ? tables : stream).put(whole[bit / 8] >> bit % 8 & 1u, 1);
    }
    stream.bytes.insert(stream.bytes.end(), whole.end() - 4, whole.end());
    return {tables.bytes, stream.bytes};
}

TEST(InspectInflate, ExpandsEveryKindOfBlock) {
    const Bytes text = sampleText();
    SharedTables tables;
    Bytes output;
    EXPECT_EQ(inflateShared(zlibStream(text, 0, Z_DEFAULT_STRATEGY), tables, text.size(), output), nullptr);
    EXPECT_EQ(output, text);
    EXPECT_EQ(inflateShared(zlibStream(text, 9, Z_FIXED), tables, text.size(), output), nullptr);
    EXPECT_EQ(output, text);
    for (const int strategy : {Z_DEFAULT_STRATEGY, Z_HUFFMAN_ONLY, Z_RLE}) {
        const Split split = splitTables(zlibStream(text, 9, strategy));
        ASSERT_EQ(parseSharedTables(split.tables, tables), nullptr) << "strategy " << strategy;
        const char* wrong = inflateShared(split.stream, tables, text.size(), output);
        EXPECT_EQ(wrong, nullptr) << "strategy " << strategy << ": " << wrong;
        EXPECT_EQ(output, text) << "strategy " << strategy;
    }
}

TEST(InspectInflate, SaysWhatIsWrongWithAStream) {
    const Bytes text = sampleText();
    const Split split = splitTables(zlibStream(text, 9, Z_DEFAULT_STRATEGY));
    SharedTables tables;
    ASSERT_EQ(parseSharedTables(split.tables, tables), nullptr);
    const auto verdict = [&](const Bytes& stream, std::size_t due) {
        Bytes output;
        const char* wrong = inflateShared(stream, tables, due, output);
        EXPECT_LE(output.size(), due);
        return std::string(wrong ? wrong : "");
    };
    Bytes sum = split.stream, longer = split.stream, header = split.stream;
    ++sum.back();
    longer.push_back(0);
    header[1] ^= 1;
    EXPECT_EQ(verdict(sum, text.size()), "its check sum is wrong");
    EXPECT_EQ(verdict(longer, text.size()), "it ends before its chunk does");
    EXPECT_EQ(verdict(header, text.size()), "its zlib header fails its check");
    EXPECT_EQ(verdict(split.stream, text.size() + 1), "it expands to fewer bytes than are due");
    EXPECT_EQ(verdict(split.stream, text.size() - 1), "it expands to more bytes than are due");
    EXPECT_EQ(verdict({0x78, 0x01, 0x07}, 10), "a block is of no known kind");
    EXPECT_EQ(verdict({0x78, 0x01, 0x01, 1, 0, 1, 0, 9}, 10), "a stored block's two lengths contradict each other");
    for (std::size_t length = 0; length < split.stream.size(); ++length) {
        EXPECT_NE(
            verdict({split.stream.begin(), split.stream.begin() + static_cast<std::ptrdiff_t>(length)}, text.size()),
            "");
    }
}

TEST(InspectInflate, RefusesTablesThatStockZlibRefuses) {
    const Bytes whole = zlibStream(sampleText(), 9, Z_DEFAULT_STRATEGY);
    const Split split = splitTables(whole);
    for (std::size_t at = 0; at < split.tables.size() * 8; ++at) {
        Bytes changed = split.tables;
        changed[at / 8] = static_cast<std::uint8_t>(changed[at / 8] ^ 1u << at % 8);
        BitSink block;
        block.put(4, 3);  // a dynamic block that is not the last
        for (std::size_t bit = 0; bit < changed.size() * 8; ++bit) block.put(changed[bit / 8] >> bit % 8 & 1u, 1);
        z_stream stock{};
        ASSERT_EQ(inflateInit2(&stock, -15), Z_OK);
        std::uint8_t nowhere[1];
        stock.next_in = block.bytes.data();
        stock.avail_in = static_cast<uInt>(block.bytes.size());
        stock.next_out = nowhere;
        stock.avail_out = 0;
        int result = Z_OK;
        while (result == Z_OK && !(stock.data_type & 256)) result = inflate(&stock, Z_TREES);
        const bool accepted = stock.data_type & 256;
        inflateEnd(&stock);
        SharedTables tables;
        EXPECT_EQ(parseSharedTables(changed, tables) == nullptr, accepted) << "bit " << at;
    }
}

}  // namespace
}  // namespace qel::author::inspector
