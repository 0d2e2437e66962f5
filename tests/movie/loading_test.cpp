// Loading: headers, leading records, the definition scan, trailer blocks, expansion. Judged by what a host sees.
#include <gtest/gtest.h>

#include <numeric>

#include "support/playback.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::frame;
using author::place;
using author::record;

MovieFile oneSquare() { return smallMovie(8, 8, {rectangle(10, 1, 4, 4), frameOf({place(10, 0)})}); }

bool showsTheSquare(const Playback& playback) {
    return playback.finished() && playback.frames.size() == 1 && playback.frames[0].at(0, 0) == red &&
           playback.frames[0].at(4, 4) == white && playback.blocksLeft == 0;
}

TEST(Loading, NeedsAWholeHeader) {
    const Bytes header = author::visHeader({.contentLength = 29});
    EXPECT_TRUE(play(header).aborted(AbortReason::badContent)) << "a header and nothing behind it";
    Bytes cut = author::visHeader({.contentLength = 27});
    cut.resize(27);
    EXPECT_TRUE(play(cut).aborted(AbortReason::badContent));
}

TEST(Loading, VersionsBelow16BelongToTheFrameDecoder) {
    MovieFile old = oneSquare();
    old.version = 15;
    const Playback playback = play(visFile(old));
    EXPECT_TRUE(playback.aborted(AbortReason::badContent));
    EXPECT_EQ(playback.reads.back().offset, 11u);
    old.version = 16;
    EXPECT_TRUE(showsTheSquare(play(visFile(old))));

    Bytes container(64, 0);
    std::copy_n("SAF", 3, container.begin());
    container[6] = 64;
    for (const std::uint8_t version : {std::uint8_t{3}, std::uint8_t{16}}) {
        container[4] = version;
        EXPECT_TRUE(play(container).aborted(AbortReason::badContent)) << int{version};
    }
}

TEST(Loading, ScansDefinitionsWithoutReadingTheirBodies) {
    MovieFile movie = smallMovie(8, 8,
                                 {rectangle(10, 1, 4, 4), spriteOf(11, {frameOf({place(10, 0)})}),
                                  author::solidFill(65535, {}), record(37, Bytes(300, 0)), frameOf({place(11, 0)})});
    const Playback playback = play(visFile(movie));
    ASSERT_TRUE(showsTheSquare(playback));
    // Style, style, style and shape are definitions; the colour, the unregistered style, the unknown record and the
    // frame are passed over; the sprite's header is longer than what was asked for.
    std::vector<std::uint32_t> counts;
    for (std::size_t i = 2; i < playback.reads.size() && playback.reads[i].offset != 0; ++i)
        counts.push_back(playback.reads[i].count);
    EXPECT_EQ(counts, (std::vector<std::uint32_t>{7, 7, 7, 5, 7, 9, 7, 5, 5, 2}));
}

TEST(Loading, TheEndRecordEndsTheScan) {
    MovieFile movie = oneSquare();
    movie.records.push_back(author::endRecord());
    movie.records.push_back(Bytes{9, 255, 255});  // a record that could not be read
    EXPECT_TRUE(showsTheSquare(play(visFile(movie))));
}

TEST(Loading, OfDefinitionsWithOneIdentifierTheFirstCounts) {
    MovieFile movie = oneSquare();
    movie.records.insert(movie.records.end() - 1, rectangle(10, 2, 8, 8));
    EXPECT_TRUE(showsTheSquare(play(visFile(movie))));
}

TEST(Loading, IdentifiersOutsideTheDictionaryAreNeverUsed) {
    MovieFile movie = smallMovie(8, 8, {rectangle(64, 1, 4, 4), frameOf({place(64, 0), place(9999, 1)})});
    const Playback playback = play(visFile(movie));
    ASSERT_TRUE(playback.finished());
    EXPECT_EQ(playback.frames.at(0).at(0, 0), white);
}

// The directory's offsets depend on its own length, so it is written until nothing moves any more.
MovieFile withDirectory(std::size_t entries) {
    MovieFile movie = oneSquare();
    movie.scanDefinitions = false;
    for (int pass = 0; pass < 4; ++pass) {
        const std::vector<author::Location> locations = recordLocations(movie);
        std::vector<author::DirectoryEntry> directory(entries);
        for (std::uint16_t id = 1; id <= 3; ++id) directory[id] = {locations[id - 1u], CharacterKind::solidFill};
        directory[10] = {locations[4], CharacterKind::shape};
        movie.leading = {author::characterDirectory(directory)};
    }
    return movie;
}

TEST(Loading, TakesTheDirectoryInPlaceOrInPieces) {
    EXPECT_TRUE(showsTheSquare(play(visFile(withDirectory(64)))));
    const MovieFile large = withDirectory(9000);
    ASSERT_GT(large.leading[0].size(), 2u * 6144);
    const Playback playback = play(visFile(large));
    EXPECT_TRUE(showsTheSquare(playback));
}

TEST(Loading, LeadingRecordsComeInTheirOrder) {
    const Bytes directory = withDirectory(64).leading[0];
    const Bytes names = author::nameTable(std::vector<author::Name>{{10, "square"}});
    const Bytes blocks = author::blockTable(std::vector<author::Block>{{{100, 20}, 1}});
    struct Row {
        std::vector<Bytes> leading;
        bool plays;
    };
    for (const Row& row :
         {Row{{directory, names}, true}, Row{{directory, blocks, names}, true}, Row{{blocks, names}, true},
          Row{{names}, true}, Row{{names, blocks}, false}, Row{{names, directory}, false},
          Row{{directory, directory}, false}, Row{{record(9, Bytes(4, 0))}, false}}) {
        MovieFile movie = smallMovie(8, 8, {frameOf({})});
        movie.leading = row.leading;
        const Playback playback = play(visFile(movie));
        EXPECT_EQ(playback.finished(), row.plays) << row.leading.size() << " records";
        EXPECT_EQ(playback.blocksLeft, 0);
    }
}

TEST(Loading, BrokenLeadingRecordsAreBadContent) {
    struct Row {
        const char* what;
        Bytes record;
    };
    for (const Row& row :
         {Row{"a directory that announces more entries than it holds", record(2, Bytes{255, 255, 0, 0})},
          Row{"a name table that announces more names", record(19, Bytes{9, 0, 1, 0, 1, 'a'})},
          Row{"a name longer than the table", record(19, Bytes{1, 0, 1, 0, 9, 'a'})},
          Row{"a block table that breaks off", record(20, Bytes{2, 0, 0x08, 0x40, 0})},
          Row{"a name table larger than a chunk", record(19, Bytes(7000, 0))}}) {
        MovieFile movie = oneSquare();
        movie.leading = {row.record};
        const Playback playback = play(visFile(movie));
        EXPECT_TRUE(playback.aborted(AbortReason::badContent)) << row.what;
        EXPECT_EQ(playback.blocksLeft, 0) << row.what;
    }
}

TEST(Loading, ReadsEveryProperty) {
    MovieFile movie = oneSquare();
    movie.width = movie.height = 1;
    movie.frameCount = 77;
    const Bytes command = author::command(CommandNumber::stop, 150);
    movie.properties.stage({0, 0, 8, 8})
        .frameCount(1)
        .background(0xFF0000, ColourFormat::rgb332)
        .keyFrameIndex(std::vector<author::Properties::KeyFrame>{{0, 20}})
        .labels(std::vector<author::Label>{{0, "start"}})
        .commands(command)
        .property(52, Bytes{0x60, 3, 0, 1, 2, 3})
        .property(56, Bytes{0, 0})
        .property(64, Bytes(20, 7))
        .property(65, Bytes{0xC0})
        .property(200, Bytes(5, 1));
    const Playback playback = play(visFile(movie));
    EXPECT_TRUE(showsTheSquare(playback));
    EXPECT_EQ(playback.info.width, 8u);
    EXPECT_EQ(playback.info.extra, 0xE000u) << "low bits are not replicated";
    EXPECT_EQ(playback.events[playback.events.size() - 2].value, 255u) << "one frame of one";
}

TEST(Loading, BrokenPropertiesAreBadContent) {
    struct Row {
        const char* what;
        std::uint8_t type;
        Bytes body;
    };
    for (const Row& row :
         {Row{"an index without its entries", 2, {9, 0, 1, 0}}, Row{"a label that breaks off", 3, {1, 0, 0, 0, 9}},
          Row{"half a count", 53, {1}}, Row{"a colour without value", 54, {0x40}}, Row{"half a length", 57, {1, 2}},
          Row{"a command past its list", 1, {0x0B, 40, 255}}}) {
        MovieFile movie = oneSquare();
        movie.properties.property(row.type, row.body);
        EXPECT_TRUE(play(visFile(movie)).aborted(AbortReason::badContent)) << row.what;
    }
    MovieFile overrun = oneSquare();
    overrun.leading = {record(1, Bytes{53, 9, 1})};
    EXPECT_TRUE(play(visFile(overrun)).aborted(AbortReason::badContent)) << "a sub-record longer than the record";
}

TEST(Loading, DurationsOfTheirOwnMayBreakOff) {
    MovieFile movie = smallMovie(8, 8, {frameOf({}), frameOf({}), frameOf({})});
    movie.properties.frameDurations(std::vector<std::uint16_t>{100});
    const Playback playback = play(visFile(movie));
    ASSERT_EQ(playback.frameTimesMs.size(), 3u);
    EXPECT_EQ(playback.frameTimesMs[2] - playback.frameTimesMs[1], 0u) << "the second frame's duration is missing: 0";
}

TEST(Loading, ReadsTheTrailerBlocks) {
    struct Row {
        std::uint8_t fontMode;
        std::optional<Bytes> font, extension;
        std::vector<std::uint32_t> sizes;  // of the reads behind the movie data
    };
    const Bytes font(30, 1), extension(70, 2);
    for (const Row& row : {Row{0, {}, {}, {}}, Row{1, font, {}, {2, 30}}, Row{1, Bytes{}, {}, {2}},
                           Row{1, font, extension, {2, 30, 4, 70}}, Row{0, {}, extension, {4, 70}},
                           Row{3, font, extension, {2, 4, 70}}, Row{2, {}, extension, {4, 70}}}) {
        MovieFile movie = oneSquare();
        movie.fontMode = row.fontMode;
        movie.fontBlock = row.font;
        movie.extensionBlock = row.extension;
        MovieFile bare = oneSquare();
        const std::size_t movieData = visFile(bare).size();
        const Playback playback = play(visFile(movie));
        EXPECT_TRUE(showsTheSquare(playback));
        std::vector<std::uint32_t> sizes;
        for (const calls::Read& read : playback.reads)
            if (read.offset >= movieData) sizes.push_back(read.count);
        EXPECT_EQ(sizes, row.sizes) << "mode " << int{row.fontMode};
    }
}

TEST(Loading, TrailerBlocksThatAreNotThereAreBadContent) {
    MovieFile movie = oneSquare();
    movie.fontMode = 1;
    EXPECT_TRUE(play(visFile(movie)).aborted(AbortReason::badContent));
    movie.fontMode = 0;
    movie.extensionBlock = Bytes(10, 0);
    Bytes cut = visFile(movie);
    cut.resize(cut.size() - 1);
    EXPECT_TRUE(play(cut).aborted(AbortReason::badContent));
    Bytes huge = visFile(movie);
    for (std::size_t i = huge.size() - 14; i < huge.size() - 10; ++i) huge[i] = 0xFF;
    EXPECT_TRUE(play(huge).aborted(AbortReason::outOfMemory));
}

// A movie of many bytes that do not compress well.
MovieFile largeMovie(std::size_t bytes) {
    MovieFile movie = oneSquare();
    Bytes noise(bytes);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : noise)
        byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24 & 0x1F);
    movie.records.insert(movie.records.begin(), record(41, noise));
    return movie;
}

TEST(Expansion, PlaysTheSameAsThePlainMovie) {
    for (const std::size_t bytes : {0u, 1500u, 2048u, 40000u}) {
        const Bytes plain = visFile(largeMovie(bytes));
        const Playback expected = play(plain), expanded = play(author::zvisFile(plain));
        EXPECT_TRUE(showsTheSquare(expanded)) << bytes;
        EXPECT_EQ(expanded.frames, expected.frames);
        EXPECT_EQ(expanded.temporaryBytes, plain.size());
    }
}

TEST(Expansion, BrokenContainersAreBadContent) {
    const Bytes good = author::zvisFile(visFile(largeMovie(9000)));
    const auto broken = [&](auto change) {
        Bytes bytes = good;
        change(bytes);
        return play(bytes);
    };
    const std::size_t tableLength = good[19], chunkCount = good[18], sizes = 20 + tableLength;
    EXPECT_TRUE(broken([](Bytes& b) { b[18] = 0; }).aborted(AbortReason::badContent)) << "no chunks";
    EXPECT_TRUE(broken([](Bytes& b) { b[18]++; }).aborted(AbortReason::badContent)) << "a chunk too many";
    EXPECT_TRUE(broken([](Bytes& b) { b[4]++; }).aborted(AbortReason::badContent)) << "the last chunk is too short";
    EXPECT_TRUE(broken([](Bytes& b) { b[4]--; }).aborted(AbortReason::badContent)) << "the last chunk is too long";
    EXPECT_TRUE(broken([](Bytes& b) { b[20] = 0xFF; }).aborted(AbortReason::badContent)) << "tables that do not parse";
    EXPECT_TRUE(broken([&](Bytes& b) { b[sizes]++; }).aborted(AbortReason::badContent)) << "a size too large";
    EXPECT_TRUE(broken([&](Bytes& b) { b[sizes + 1] = 0xFF; }).aborted(AbortReason::badContent)) << "three feeds long";
    EXPECT_TRUE(broken([&](Bytes& b) { b[sizes + 2 * chunkCount] ^= 0xFF; }).aborted(AbortReason::badContent))
        << "no zlib stream";
    EXPECT_TRUE(broken([](Bytes& b) { b.back() ^= 1; }).aborted(AbortReason::badContent)) << "a wrong checksum";
    PlayOptions options;
    options.session.faults.noTemporaryFile = true;
    EXPECT_TRUE(play(good, options).aborted(AbortReason::noTemporaryFile));
}

TEST(Expansion, MemoryThatRunsOutIsNoBadContent) {
    const Bytes content = author::zvisFile(visFile(oneSquare()));
    const std::uint64_t count = play(content).allocations;
    for (std::uint64_t n = 1; n <= count; ++n) {
        PlayOptions options;
        options.session.faults.allocationsFailFrom = n;
        const Playback playback = play(content, options);
        EXPECT_TRUE(playback.opened == OpenResult::refused || playback.aborted(AbortReason::outOfMemory)) << n;
    }
}

TEST(Expansion, ExpandedContentIsNoCompressedContent) {
    const Bytes twice = author::zvisFile(author::zvisFile(visFile(oneSquare())));
    EXPECT_TRUE(play(twice).aborted(AbortReason::badContent));
}

TEST(Budget, RunsOutAtTheSamePlaceAndEndsPlayback) {
    PlayOptions options;
    options.session.player.budget = 2000;
    EXPECT_TRUE(showsTheSquare(play(visFile(oneSquare()), options)) ||
                play(visFile(oneSquare()), options).aborted(AbortReason::outOfMemory));
    options.session.player.budget = 64 * 16 + 4;  // the dictionary alone reaches it
    const Playback playback = play(visFile(oneSquare()), options);
    EXPECT_TRUE(playback.aborted(AbortReason::outOfMemory));
    EXPECT_EQ(playback.eventNumbers(), "9");
    EXPECT_EQ(playback.blocksLeft, 0);
}

}  // namespace
}  // namespace qel::test
