// Streams with and without kept code tables, cut anywhere, and hostile ones.
#include "movie/inflater.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "author/deflate.h"
#include "author/huffman.h"

namespace qel {
namespace {

using author::BlockChoice;
using author::CodeTables;
using Bytes = std::vector<std::uint8_t>;

// Memory that counts, and refuses from one allocation on.
struct CountedMemory {
    int allocations = 0, refuseFrom = 0, blocksHeld = 0;  // refuseFrom 0: never

    InflateMemory door() { return {.context = this, .allocate = allocate, .free = release}; }
    static void* allocate(void* context, std::size_t size) {
        auto& memory = *static_cast<CountedMemory*>(context);
        ++memory.allocations;
        if (memory.refuseFrom != 0 && memory.allocations >= memory.refuseFrom) return nullptr;
        ++memory.blocksHeld;
        return std::malloc(size);
    }
    static void release(void* context, void* block) {
        --static_cast<CountedMemory*>(context)->blocksHeld;
        std::free(block);
    }
};

// An inflater that looks after itself, and the calls that tests make of it.
struct TestInflater {
    CountedMemory memory;
    Inflater inflater;

    TestInflater() { EXPECT_TRUE(createInflater(inflater, memory.door())); }
    ~TestInflater() {
        destroyInflater(inflater);
        EXPECT_EQ(memory.blocksHeld, 0);
    }
    bool keep(const Bytes& description) { return keepCodeTables(inflater, description); }
};

struct Expanded {
    InflateStatus status = InflateStatus::broken;
    std::size_t consumed = 0;
    Bytes output;
};

// Inflates a stream handed over in pieces that end at `cuts`, each in a block of its own so that a read past it shows,
// into room that is given out `roomStep` bytes at a time.
Expanded expand(Inflater& inflater, const Bytes& stream, std::size_t room, std::vector<std::size_t> cuts = {},
                std::size_t roomStep = SIZE_MAX) {
    Expanded result;
    cuts.push_back(stream.size());
    beginStream(inflater);
    std::size_t start = 0;
    for (const std::size_t end : cuts) {
        const auto begin = stream.begin() + static_cast<std::ptrdiff_t>(start);
        const Bytes piece(begin, stream.begin() + static_cast<std::ptrdiff_t>(end));
        std::size_t taken = 0;
        for (;;) {
            Bytes output(std::min(roomStep, room - result.output.size()));
            const InflateProgress progress = inflateBytes(inflater, std::span(piece).subspan(taken), output);
            taken += progress.consumed;
            result.consumed += progress.consumed;
            result.output.insert(result.output.end(), output.begin(),
                                 output.begin() + static_cast<std::ptrdiff_t>(progress.produced));
            result.status = progress.status;
            const bool full = progress.produced == output.size() && result.output.size() < room;
            const bool goesOn =
                progress.status == InflateStatus::needInput ? full : progress.status == InflateStatus::needOutput;
            if (!goesOn || (progress.produced == 0 && progress.consumed == 0)) break;
        }
        if (result.status != InflateStatus::needInput) break;
        EXPECT_EQ(taken, piece.size());
        start = end;
    }
    return result;
}

std::vector<std::size_t> everyByte(const Bytes& stream) {
    std::vector<std::size_t> cuts;
    for (std::size_t at = 1; at < stream.size(); ++at) cuts.push_back(at);
    return cuts;
}

Bytes sampleText(std::size_t size = 2048) {
    std::string text;
    for (int i = 0; text.size() < size; ++i)
        text += "frame " + std::to_string(i * i) + (i % 3 ? " places\n" : " moves ");
    text.resize(size);
    return {text.begin(), text.end()};
}

Bytes noise(std::size_t size, unsigned seed) {
    std::minstd_rand random(seed);
    Bytes bytes(size);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
    return bytes;
}

Bytes stockStream(const Bytes& data, int level, int strategy, int windowBits = 15, int memoryLevel = 8) {
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, level, Z_DEFLATED, windowBits, memoryLevel, strategy), Z_OK);
    Bytes out(data.size() * 2 + 1000);
    stream.next_in = const_cast<Bytef*>(data.data());
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

// Deflate's bit order: the lowest bit of a byte first.
struct BitSink {
    Bytes bytes;
    std::size_t used = 0;

    void put(std::size_t value, unsigned bits) {
        for (unsigned i = 0; i < bits; ++i, ++used) {
            if (used % 8 == 0) bytes.push_back(0);
            bytes.back() = static_cast<std::uint8_t>(bytes.back() | (value >> i & 1) << (used % 8));
        }
    }
    void put(std::span<const std::uint8_t> lengths, std::size_t symbol) {
        put(author::canonicalCodes(lengths)[symbol], lengths[symbol]);
    }
};

// A stream of several blocks of literals; those of type 2 are written with the shared tables.
class StreamOfBlocks {
  public:
    explicit StreamOfBlocks(const CodeTables& tables) : tables_(tables) { sink_.put(0x0178, 16); }

    void add(unsigned type, const Bytes& literals, bool last) {
        content_.insert(content_.end(), literals.begin(), literals.end());
        sink_.put((last ? 1u : 0u) | type << 1, 3);
        if (type == 0) {
            sink_.used = sink_.bytes.size() * 8;
            sink_.put(literals.size(), 16);
            sink_.put(~literals.size() & 0xFFFF, 16);
            for (const std::uint8_t byte : literals) sink_.put(byte, 8);
            return;
        }
        Bytes fixed(288, 8);
        std::fill(fixed.begin() + 144, fixed.begin() + 256, std::uint8_t{9});
        std::fill(fixed.begin() + 256, fixed.begin() + 280, std::uint8_t{7});
        const std::span<const std::uint8_t> lengths =
            type == 1 ? std::span<const std::uint8_t>(fixed) : tables_.literalLengths;
        for (const std::uint8_t byte : literals) sink_.put(lengths, byte);
        sink_.put(lengths, 256);
    }
    const Bytes& content() const { return content_; }
    Bytes stream() const {
        Bytes whole = sink_.bytes;
        const uLong checksum = adler32(1, content_.data(), static_cast<uInt>(content_.size()));
        for (const unsigned shift : {24u, 16u, 8u, 0u}) whole.push_back(static_cast<std::uint8_t>(checksum >> shift));
        return whole;
    }

  private:
    const CodeTables& tables_;
    BitSink sink_;
    Bytes content_;
};

// The description of any code lengths, good or bad: each is sent in four bits.
Bytes describe(const Bytes& literals, const Bytes& distances) {
    BitSink sink;
    sink.put(literals.size() - 257, 5);
    sink.put(distances.size() - 1, 5);
    sink.put(15, 4);
    for (const int symbol : {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15})
        sink.put(symbol < 16 ? 4 : 0, 3);
    const Bytes four(16, 4);
    for (const std::uint8_t length : literals) sink.put(four, length);
    for (const std::uint8_t length : distances) sink.put(four, length);
    return sink.bytes;
}

TEST(Inflater, ExpandsEveryKindOfBlockWithKeptTables) {
    TestInflater test;
    for (const Bytes& data : {sampleText(), noise(2048, 1), Bytes(2048, 7), Bytes{5}, Bytes{}}) {
        const CodeTables tables = author::chooseCodeTables(data, 2048);
        ASSERT_TRUE(test.keep(tables.description));
        for (const BlockChoice choice : {BlockChoice::stored, BlockChoice::fixedCodes, BlockChoice::sharedCodes}) {
            Bytes stream = author::deflateWithTables(data, tables, choice);
            const std::size_t end = stream.size();
            stream.resize(end + 9, 0xAA);  // bytes behind the stream are none of its business
            const Expanded result = expand(test.inflater, stream, data.size());
            EXPECT_EQ(result.status, InflateStatus::streamEnd);
            EXPECT_EQ(result.consumed, end);
            EXPECT_EQ(result.output, data);
        }
    }
    EXPECT_LE(test.memory.allocations, 2) << "state and window serve all streams";
}

TEST(Inflater, KeepsTablesAcrossTheBlocksOfAStreamAtEveryBitPosition) {
    std::minstd_rand random(11);
    TestInflater test;
    const CodeTables tables = author::chooseCodeTables(sampleText(), 2048);
    ASSERT_TRUE(test.keep(tables.description));
    for (int round = 0; round < 300; ++round) {
        StreamOfBlocks blocks(tables);
        const std::size_t count = 1 + random() % 12;
        for (std::size_t i = 1; i <= count; ++i)
            blocks.add(static_cast<unsigned>(random() % 3), sampleText(random() % 9), i == count);
        const Bytes stream = blocks.stream();
        for (const auto& cuts : {std::vector<std::size_t>{}, everyByte(stream)}) {
            for (const std::size_t roomStep : {SIZE_MAX, std::size_t{1}}) {
                const Expanded result = expand(test.inflater, stream, blocks.content().size(), cuts, roomStep);
                ASSERT_EQ(result.status, InflateStatus::streamEnd) << "round " << round;
                ASSERT_EQ(result.consumed, stream.size());
                ASSERT_EQ(result.output, blocks.content()) << "round " << round;
            }
        }
    }
}

TEST(Inflater, ExpandsOrdinaryStreamsWhenNoTablesAreKept) {
    TestInflater test;
    Bytes data = sampleText(70000);
    const Bytes incompressible = noise(50000, 2);
    data.insert(data.end(), incompressible.begin(), incompressible.end());
    for (const int strategy : {Z_DEFAULT_STRATEGY, Z_FILTERED, Z_HUFFMAN_ONLY, Z_RLE, Z_FIXED}) {
        for (const int level : {0, 1, 9}) {
            for (const int windowBits : {9, 15}) {
                const Bytes stream = stockStream(data, level, strategy, windowBits, 1);  // 1: many small blocks
                for (const std::size_t roomStep : {SIZE_MAX, std::size_t{1000}}) {
                    const Expanded result =
                        expand(test.inflater, stream, data.size(), {stream.size() / 3, stream.size() / 2}, roomStep);
                    EXPECT_EQ(result.status, InflateStatus::streamEnd);
                    EXPECT_EQ(result.consumed, stream.size());
                    ASSERT_TRUE(result.output == data) << "strategy " << strategy << ", level " << level;
                }
            }
        }
    }
}

TEST(Inflater, InputMayBeCutAtEveryPosition) {
    TestInflater test;
    const Bytes data = sampleText();
    const CodeTables tables = author::chooseCodeTables(data, 2048);
    for (const bool kept : {true, false}) {
        ASSERT_TRUE(test.keep(tables.description));
        if (!kept) forgetCodeTables(test.inflater);
        const Bytes stream = kept ? author::deflateWithTables(data, tables, BlockChoice::sharedCodes)
                                  : stockStream(data, 9, Z_DEFAULT_STRATEGY);
        for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
            const Expanded result = expand(test.inflater, stream, data.size(), {cut});
            ASSERT_EQ(result.status, InflateStatus::streamEnd) << "cut at " << cut;
            ASSERT_EQ(result.output, data) << "cut at " << cut;
        }
    }
}

TEST(Inflater, TellsWhatAStreamStillNeeds) {
    TestInflater test;
    const Bytes data = sampleText();
    const CodeTables tables = author::chooseCodeTables(data, 2048);
    ASSERT_TRUE(test.keep(tables.description));
    const Bytes stream = author::deflateWithTables(data, tables);
    for (std::size_t length = 0; length < stream.size(); ++length) {
        const Bytes cut(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(length));
        const Expanded result = expand(test.inflater, cut, data.size());
        ASSERT_EQ(result.status, InflateStatus::needInput) << "of length " << length;
        ASSERT_EQ(result.consumed, length);
    }
    for (const std::size_t room : {std::size_t{0}, std::size_t{1}, data.size() - 1}) {
        const Expanded result = expand(test.inflater, stream, room);
        EXPECT_EQ(result.status, InflateStatus::needOutput) << "with room for " << room;
        EXPECT_TRUE(std::ranges::equal(result.output, std::span(data).first(room)));
    }
}

TEST(Inflater, AChangedBitNeverPassesForTheRightContent) {
    TestInflater test;
    const Bytes data = sampleText(600);
    const CodeTables tables = author::chooseCodeTables(data, 600);
    ASSERT_TRUE(test.keep(tables.description));
    for (const BlockChoice choice : {BlockChoice::stored, BlockChoice::fixedCodes, BlockChoice::sharedCodes}) {
        const Bytes stream = author::deflateWithTables(data, tables, choice);
        for (std::size_t bit = 0; bit < stream.size() * 8; ++bit) {
            Bytes changed = stream;
            changed[bit / 8] = static_cast<std::uint8_t>(changed[bit / 8] ^ 1u << (bit % 8));
            const Expanded result = expand(test.inflater, changed, data.size(), {bit / 8});
            if (result.status == InflateStatus::streamEnd) {  // the bits in front of a byte boundary carry nothing
                ASSERT_EQ(result.output, data) << "bit " << bit;
            }
        }
    }
    std::minstd_rand random(5);
    for (unsigned seed = 1; seed <= 2000; ++seed) {
        Bytes stream = noise(1 + random() % 300, seed);
        stream.insert(stream.begin(), {0x78, 0x01});
        expand(test.inflater, stream, 2048, {stream.size() / 2}, 100);
    }
}

TEST(Inflater, ChecksTheHeaderOfTheStream) {
    const Bytes data = sampleText(100);
    const Bytes stream = stockStream(data, 9, Z_DEFAULT_STRATEGY);
    struct Case {
        const char* what;
        std::uint8_t method, flags;
        bool good;
    };
    const Case cases[] = {
        {"another level", 0x78, 0xDA, true},        {"a preset dictionary", 0x78, 0x20, true},
        {"a small window", 0x08, 0x1D, true},       {"a window of 64 KB", 0x88, 0x1C, false},
        {"another method", 0x79, 0x1D, false},      {"not a multiple of 31", 0x78, 0x02, false},
        {"the bytes exchanged", 0x01, 0x78, false}, {"nothing but zeros", 0, 0, false},
    };
    TestInflater test;
    for (const Case& each : cases) {
        ASSERT_TRUE(!each.good || (each.method * 256 + each.flags) % 31 == 0) << each.what;
        Bytes changed = stream;
        changed[0] = each.method;
        changed[1] = each.flags;
        const Expanded result = expand(test.inflater, changed, data.size());
        EXPECT_EQ(result.status, each.good ? InflateStatus::streamEnd : InflateStatus::broken) << each.what;
        EXPECT_EQ(result.output.size(), each.good ? data.size() : 0u) << each.what;
    }
}

TEST(Inflater, ABrokenStreamStaysBrokenAndTheNextIsNotTouched) {
    TestInflater test;
    const Bytes data = sampleText(100), stream = stockStream(data, 9, Z_DEFAULT_STRATEGY);
    Bytes wrong = stream;
    ++wrong.back();
    EXPECT_EQ(expand(test.inflater, wrong, data.size()).status, InflateStatus::broken);
    Bytes output(data.size());
    EXPECT_EQ(inflateBytes(test.inflater, stream, output).status, InflateStatus::broken);
    EXPECT_EQ(expand(test.inflater, stream, data.size()).status, InflateStatus::streamEnd);
    EXPECT_EQ(inflateBytes(test.inflater, stream, output).consumed, 0u) << "behind the end";

    beginStream(test.inflater);
    EXPECT_EQ(inflateBytes(test.inflater, std::span(stream).first(9), output).status, InflateStatus::needInput);
    ASSERT_TRUE(test.keep(author::chooseCodeTables(data, 100).description));
    EXPECT_EQ(inflateBytes(test.inflater, std::span(stream).subspan(9), output).status, InflateStatus::broken);
}

TEST(Inflater, RefusesBadTables) {
    const Bytes flat30(30, 5), distances = [&] {  // 2 codes of 4 bits and 28 of 5 fill the code
        Bytes lengths = flat30;
        lengths[0] = lengths[1] = 4;
        return lengths;
    }();
    const auto literals = [](std::size_t ofEight, std::size_t count) {  // 226 codes of 8 bits and 60 of 9 fill it
        Bytes lengths(count, 9);
        std::fill_n(lengths.begin(), ofEight, std::uint8_t{8});
        return lengths;
    };
    Bytes noEnd = literals(227, 286);
    noEnd[256] = 0;
    const Bytes noDistances{0};
    struct Case {
        const char* what;
        Bytes description;
        bool good;
    };
    const Case cases[] = {
        {"complete", describe(literals(226, 286), distances), true},
        {"literals only", describe(literals(226, 286), noDistances), true},
        {"oversubscribed literals", describe(literals(227, 286), distances), false},
        {"incomplete literals", describe(literals(225, 286), distances), false},
        {"oversubscribed distances", describe(literals(226, 286), Bytes(30, 4)), false},
        {"incomplete distances", describe(literals(226, 286), flat30), false},
        {"no end of block", describe(noEnd, distances), false},
        {"no codes at all", describe(Bytes(286, 0), noDistances), false},
        {"too many literals", describe(literals(225, 287), distances), false},
        {"too many distances", describe(literals(226, 286), Bytes(32, 5)), false},
        {"nothing", {}, false},
        {"zeros", Bytes(40, 0), false},
        {"ones", Bytes(2100, 255), false},
    };
    TestInflater test;
    const Bytes data = sampleText(50), plain = stockStream(data, 9, Z_FIXED);
    for (const Case& each : cases) {
        EXPECT_EQ(test.keep(each.description), each.good) << each.what;
        EXPECT_EQ(test.inflater.keptBits != 0, each.good) << each.what;
        EXPECT_EQ(expand(test.inflater, plain, data.size()).status, InflateStatus::streamEnd) << each.what;
    }
}

TEST(Inflater, TheTablesMustLieWholeInTheirBytes) {
    TestInflater test;
    const Bytes data = sampleText();
    const CodeTables tables = author::chooseCodeTables(data, 2048);
    for (std::size_t length = 0; length < tables.description.size(); ++length) {
        const Bytes cut(tables.description.begin(), tables.description.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(test.keep(cut)) << length;
    }
    Bytes longer = tables.description;
    longer.resize(3000, 0x5A);
    ASSERT_TRUE(test.keep(longer));
    EXPECT_EQ(expand(test.inflater, author::deflateWithTables(data, tables), data.size()).output, data);
}

TEST(Inflater, GivesEverythingBackWhereverMemoryRunsOut) {
    const Bytes data = sampleText();
    const CodeTables tables = author::chooseCodeTables(data, 2048);
    const Bytes stream = author::deflateWithTables(data, tables, BlockChoice::sharedCodes);
    InflateStatus status = InflateStatus::broken;
    int refused = 0;
    while (status != InflateStatus::streamEnd) {
        ASSERT_LT(++refused, 10);
        CountedMemory memory{.refuseFrom = refused};
        const auto inflater = std::make_unique<Inflater>();
        if (createInflater(*inflater, memory.door())) {
            EXPECT_TRUE(keepCodeTables(*inflater, tables.description));
            const std::vector<std::size_t> cuts{stream.size() / 2};  // what goes on needs the window
            status = expand(*inflater, stream, data.size(), cuts).status;
            EXPECT_TRUE(status == InflateStatus::streamEnd || status == InflateStatus::outOfMemory);
        } else {
            EXPECT_EQ(memory.blocksHeld, 0);
        }
        destroyInflater(*inflater);
        EXPECT_EQ(memory.blocksHeld, 0);
    }
    EXPECT_EQ(refused, 3) << "the state and the window";
}

}  // namespace
}  // namespace qel
