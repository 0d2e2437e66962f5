#include <gtest/gtest.h>

#include <stdexcept>

#include "author/frame_items.h"
#include "author/hex.h"
#include "author/movie_writer.h"
#include "author/structures.h"

namespace qel::author {
namespace {

struct Case {
    const char* what;
    Bytes bytes;
    const char* expected;
};

void expectAll(std::initializer_list<Case> cases) {
    for (const Case& each : cases) EXPECT_EQ(hex(each.bytes), each.expected) << each.what;
}

template <class Write>
Bytes written(Write write) {
    ByteWriter to;
    write(to);
    return to.take();
}

// As it reads: a 5-bit width, then the fields in that width, most significant bit first.
TEST(Structures, AreAsNarrowAsTheirValues) {
    expectAll({
        // 00011 011 110
        {"a point", written([](ByteWriter& to) {
             writePoint(to, {3, -2});
         }),
         "1b c0"},
        // 10000 and twice 16 bits
        {"the widest point", written([](ByteWriter& to) {
             writePoint(to, {32767, -32768});
         }),
         "83 ff fc 00 00"},
        // 00110 110110 000000 010100 000111
        {"a rectangle", written([](ByteWriter& to) {
             writeRect(to, {-10, 0, 20, 7});
         }),
         "36 c0 28 38"},
        // 1 10010 01(16 zeros) 01(16 zeros), 0, 1 00100 0101 1101
        {"a translated identity",
         written([](ByteWriter& to) { writeMatrix(to, {.a = fixedOne, .d = fixedOne, .tx = 5, .ty = -3}); }),
         "c9 00 00 40 00 12 2e 80"},
        // 0, 1 00010 01 11, 0
        {"a matrix without scale", written([](ByteWriter& to) { writeMatrix(to, {.b = 1, .c = -1}); }), "44 e0"},
        // 11 0001 1000, 1000: -128 0
        {"a colour transform",
         written([](ByteWriter& to) { writeColourTransform(to, {.redMultiplier = 0, .alphaOffset = -128}); }),
         "c6 22 00 00"},
        // 11 0010, 0110: blue has both
        {"a compact colour transform",
         written([](ByteWriter& to) { writeCompactColourTransform(to, {.blueMultiplier = 32, .blueOffset = 5}); }),
         "c9 85 80"},
        {"nothing to transform", written([](ByteWriter& to) { writeColourTransform(to, {}); }), "00 04"},
    });
    EXPECT_THROW(written([](ByteWriter& to) {
                     constexpr std::int32_t tooWide = -0x7FFFFFFF;
                     writeMatrix(to, {.a = tooWide, .d = 1});
                 }),
                 std::out_of_range);
}

TEST(Structures, KeepTheHighBitsOfAColour) {
    constexpr std::uint32_t colour = 0xE8A4C4;
    const auto packed = [](ColourFormat format) {
        return written([format](ByteWriter& to) { writePackedColour(to, format, colour); });
    };
    expectAll({{"3, 3 and 2 bits", packed(ColourFormat::rgb332), "00 f7"},
               {"4 bits each, the low ones", packed(ColourFormat::xrgb4444), "10 ac 0e"},
               {"4 bits each, the high ones", packed(ColourFormat::rgbx4444), "20 c0 ea"},
               {"5, 6 and 5 bits", packed(ColourFormat::rgb565), "30 38 ed"},
               {"whole", packed(ColourFormat::rgb888), "40 c4 a4 e8"}});
}

TEST(Records, HaveALengthFieldAsWideAsTheirTypeSays) {
    const Bytes body{0xAA, 0xBB};
    expectAll({{"0", record(0, body), "00 02 00 00 00 aa bb"},
               {"1", record(1, body), "01 02 00 aa bb"},
               {"37", record(37, body), "25 02 00 aa bb"},
               {"38", record(38, body), "26 02 00 00 00 aa bb"},
               {"47", record(47, body), "2f 02 00 00 00 aa bb"},
               {"48", record(48, body), "30 02 aa bb"},
               {"254", record(254, body), "fe 02 aa bb"},
               {"255", record(255, body), "ff 02 00 00 00 aa bb"}});
    EXPECT_EQ(record(48, Bytes(255)).size(), 257u);
    EXPECT_THROW(record(48, Bytes(256)), std::length_error);
    EXPECT_THROW(record(9, Bytes(65536)), std::length_error);
}

TEST(Records, HoldStylesAndShapes) {
    Outline outline;
    outline.style({.line = {}, .fill0 = 7, .fill1 = {}}).moveTo({1, 0}).lineTo({5, 0}).lineTo({1, 4});
    outline.curveBy({0, -2}, {0, -2});
    const GradientStop stops[] = {{0, 0x000000, 255}, {255, 0xFFFFFF, 0}};
    const Matrix halved{.a = 0x8000, .d = 0x8000};
    expectAll({
        {"a solid fill", solidFill(7, {0xFF8000, 128}), "34 06 07 00 30 00 fc 80"},
        {"a line style", lineStyle(8, {0xFFFFFF}, 2), "38 07 08 00 30 80 ff ff ff"},
        // type 1, format 3; the matrix 1 10001 and twice 01(15 zeros), 0, 0
        {"a radial gradient", gradientFill(9, GradientType::radial, halved, stops),
         "35 12 09 00 4c c5 00 00 80 00 00 02 00 00 00 ff ff ff ff 00"},
        // The bounds 00100 0001 0000 0101 0100, five path records in one group, has-fill, no lists.
        {"a shape",
         shape({.id = 3, .bounds = {1, 0, 5, 4}, .outline = outline, .bitmapFills = {}, .gradientFills = {}}),
         "09 1c 00 03 00 20 82 a0 05 00 01 01 08 23 40 07 00 a2 12 00 42 22 80 42 20 a0 84 11 00 11 00"},
        {"a background", backgroundColour(0x0000FF), "45 03 30 1f 00"},
        // One width for all: 3 numbers of 5 bits
        {"a key frame list", keyFrameList(std::vector<std::uint16_t>{0, 9, 31}), "03 05 00 03 00 40 27 e0"},
    });
}

TEST(FrameItems, SwitchToALongLengthAtFifteen) {
    const auto head = [](std::uint8_t type, std::size_t size, std::size_t bytes) {
        Bytes whole = item(type, Bytes(size));
        EXPECT_EQ(whole.size(), size + bytes) << int{type};
        whole.resize(bytes);
        return whole;
    };
    expectAll({{"14 bytes", head(10, 14, 1), "ae"},
               {"15 bytes", head(10, 15, 3), "af 0f 00"},
               {"types below 12", head(11, 300, 3), "bf 2c 01"},
               {"types from 12 on", head(12, 300, 5), "cf 2c 01 00 00"},
               {"more than two bytes can say", head(14, 70000, 5), "ef 70 11 01 00"}});
    EXPECT_THROW(item(11, Bytes(65536)), std::length_error);
}

TEST(FrameItems, HoldWhatTheyAreFor) {
    PlacedClip clip{.characterId = 9, .depth = 1, .name = "ab", .handlers = {{.onFrame = true, .code = {0x07}}}};
    const std::uint8_t body[] = {253, 0x34, 0x12, 1};
    expectAll({{"place", place(0x0102, 5), "13 02 01 05"},
               {"remove", removeAt(4), "21 04"},
               {"alpha", alpha(2, 128), "62 02 80"},
               {"instance number", instanceNumber(0x0203), "c2 03 02"},
               // a translation alone: 0, 0, 1 00010 01 01
               {"move", move(1, {.tx = 1, .ty = 1}), "53 01 22 50"},
               {"purge order", purgeOrderUpdate(std::vector<PurgePosition>{{.id = 6, .position = 1}}), "b3 16 20 00"},
               {"place clip", placeClip(clip), "df 0f 00 00 00 09 00 01 03 02 61 62 04 03 00 00 00 04 00 07"},
               {"a command of one byte", command(CommandNumber{2}, 254), "08 fe"},
               {"a command of four bytes", command(CommandNumber{1}, body), "07 04 fd 34 12 01"}});
}

// Every field of the header and every length, byte by byte.
TEST(MovieFiles, AreAHeaderAndRecords) {
    MovieFile movie;
    movie.width = 0x0102;
    movie.height = 3;
    movie.dropFrames = true;
    movie.properties.frameDuration(40);
    movie.records = {frame(place(1, 0))};
    EXPECT_EQ(hex(visFile(movie)),
              "56 49 53 c0 16 00 00 00 00 00 00 00 00 00 00 00 00 2f 00 00 00 01 00 02 01 03 00 00 00 "
              "01 04 00 37 02 28 00 10 06 00 ff ff 13 01 00 00 fe 00");
    const std::vector<Location> locations = recordLocations(movie);
    ASSERT_EQ(locations.size(), 1u);
    EXPECT_EQ(locations[0].offset, 36u);
    EXPECT_EQ(locations[0].length, 9u);
}

TEST(MovieFiles, CarryTheirTrailersBehindTheContent) {
    MovieFile movie;
    movie.fontMode = 1;
    movie.fontBlock = Bytes{0xF0};
    movie.extensionBlock = Bytes{0xE0, 0xE1};
    const Bytes file = visFile(movie);
    EXPECT_EQ(file[3], 0x84);   // the definitions are scanned, a font block follows
    EXPECT_EQ(file[10], 0x80);  // an extension block follows
    EXPECT_EQ(file[17], 34);    // the content: the header, empty properties, the end
    EXPECT_EQ(hex(std::span(file).subspan(34)), "01 00 f0 02 00 00 00 e0 e1");
}

// A chunk count is one byte: 255 chunks of 2048 bytes and no more.
TEST(MovieFiles, AreCompressedUpToTheLimitOfTheirChunkTable) {
    constexpr std::size_t most = 255 * 2048;
    const Bytes file = zvisFile(Bytes(most));
    EXPECT_EQ(std::string(file.begin(), file.begin() + 4), "ZVIS");
    EXPECT_EQ(file[18], 255);
    EXPECT_THROW(zvisFile(Bytes(most + 1)), std::length_error);
}

}  // namespace
}  // namespace qel::author
