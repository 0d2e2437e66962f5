// Morphs: the shape between two shapes at several ratios, and the styles between their styles.
#include <gtest/gtest.h>

#include "support/live_movie.h"
#include "support/shape_picture.h"

namespace qel::test {
namespace {

using author::Outline;
using author::place;

Outline box(std::uint16_t fill, std::int16_t x, std::int16_t width, std::int16_t height) {
    Outline outline;
    outline.style({.line = noCharacter, .fill0 = fill, .fill1 = noCharacter}).moveTo({x, 0});
    outline.lineTo({static_cast<std::int16_t>(x + width), 0});
    outline.lineTo({static_cast<std::int16_t>(x + width), height}).lineTo({x, height});
    return outline.lineTo({x, 0});
}

// Morph 30 from shape 10 to shape 11; each frame gives it the next ratio.
MovieFile morphing(const Bytes& start, const Bytes& end, std::initializer_list<author::StylePair> pairs,
                   std::initializer_list<std::uint16_t> ratios) {
    MovieFile movie = smallMovie(8, 4, {start, end});
    movie.records.push_back(author::morphShape(30, 10, 11, std::span(pairs.begin(), pairs.size())));
    bool placed = false;
    for (const std::uint16_t ratio : ratios) {
        const Bytes item = author::ratio(0, ratio);
        movie.records.push_back(std::exchange(placed, true) ? frameOf({item}) : frameOf({place(30, 0), item}));
    }
    return movie;
}

std::vector<Image> framesOf(const MovieFile& movie) {
    const Playback playback = play(visFile(movie));
    EXPECT_TRUE(playback.finished());
    return playback.frames;
}

TEST(Morphs, StandBetweenTheirShapes) {
    const std::vector<Image> frames =
        framesOf(morphing(shapeOf(10, box(1, 0, 2, 1)), shapeOf(11, box(1, 4, 4, 3)), {}, {0, 16384, 32768, 40960}));
    ASSERT_EQ(frames.size(), 4u);
    EXPECT_EQ(picture(frames[0]), R"(
rr......
........
........
........
)");
    EXPECT_EQ(picture(frames[1]), R"(
..rrr...
..rrr...
........
........
)");
    EXPECT_EQ(picture(frames[2]), R"(
....rrrr
....rrrr
....rrrr
........
)");
    EXPECT_EQ(picture(frames[3]), R"(
.....rrr
.....rrr
.....rrr
........
)") << "beyond the end the change goes on";
}

TEST(Morphs, MixStylesThatArePairsAndLeaveOutOthers) {
    const Bytes start = shapeOf(10, box(1, 0, 8, 4)), end = shapeOf(11, box(3, 0, 8, 4));
    const std::vector<Image> frames = framesOf(morphing(start, end, {{1, 3}}, {0, 16384, 32768}));
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0].at(3, 3), 0xF800);
    EXPECT_EQ(frames[1].at(3, 3), (124 & 0xF8) << 8 | 124 >> 3);
    EXPECT_EQ(frames[2].at(3, 3), 0x001F);
    EXPECT_EQ(framesOf(morphing(start, end, {{3, 1}}, {0}))[0].at(3, 3), white) << "no pair: no fill";
}

TEST(Morphs, HaveAsManySegmentsAsTheShorterOfTheirShapes) {
    Outline longer = box(1, 0, 8, 2);
    longer.moveTo({0, 3}).lineTo({8, 3}).lineTo({8, 4}).lineTo({0, 4}).lineTo({0, 3});
    const Bytes shorter = shapeOf(10, box(1, 0, 8, 2));
    for (const auto& [start, end] :
         {std::pair{shorter, shapeOf(11, longer)}, std::pair{shapeOf(10, longer), shapeOf(11, box(1, 0, 8, 2))}}) {
        const std::vector<Image> frames = framesOf(morphing(start, end, {}, {16384}));
        ASSERT_EQ(frames.size(), 1u);
        EXPECT_EQ(picture(frames[0]), "\nrrrrrrrr\nrrrrrrrr\n........\n........\n");
    }
}

TEST(Morphs, KeepTheColoursThatAreSetOnThem) {
    MovieFile movie = morphing(shapeOf(10, box(1, 0, 8, 4)), shapeOf(11, box(3, 0, 8, 4)), {{1, 3}}, {0, 0, 32768});
    const Bytes half = author::colour(0, {.redMultiplier = 128, .blueMultiplier = 128});
    movie.records[movie.records.size() - 2] = frameOf({half});
    const std::vector<Image> frames = framesOf(movie);
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[1].at(0, 0), 0x7800);
    EXPECT_EQ(frames[2].at(0, 0), 0x000F);
}

TEST(Morphs, GrowTheirLines) {
    const auto line = [](std::uint16_t id, std::uint16_t style) {
        Outline outline;
        outline.style({.line = style, .fill0 = {}, .fill1 = {}}).moveTo({0, 1}).lineTo({7, 1});
        return shapeOf(id, outline, false);
    };
    MovieFile movie = morphing(line(10, 5), line(11, 6), {{5, 6}}, {0, 32768});
    movie.records.insert(movie.records.begin(), {author::lineStyle(5, {.colour = 0xFF0000}, 0),
                                                 author::lineStyle(6, {.colour = 0x00FF00}, 2)});
    const std::vector<Image> frames = framesOf(movie);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(picture(frames[0]), "\n........\n........\n........\n........\n") << "of width 0 a morph draws none";
    EXPECT_EQ(picture(frames[1]), "\ngggggggg\ngggggggg\n........\n........\n");
}

TEST(Morphs, WithoutTheirShapesPlaceNothing) {
    const std::vector<Image> frames = framesOf(morphing(shapeOf(10, box(1, 0, 8, 4)), {}, {}, {0}));
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].at(0, 0), white);
}

TEST(Morphs, GiveBackTheUsesOfTheirShapes) {
    MovieFile movie = morphing(shapeOf(10, box(1, 0, 8, 4)), shapeOf(11, box(1, 0, 8, 4)), {}, {0});
    movie.records.push_back(frameOf({author::removeAt(0)}));
    LiveMovie live(visFile(movie));
    live.playFrames(1);
    const Character* start = live.movie().dictionary.entries[10].object;
    ASSERT_NE(start, nullptr);
    const std::uint8_t used = start->useCount;
    live.playFrames(2);
    EXPECT_EQ(start->useCount, used - 1);
}

}  // namespace
}  // namespace qel::test
