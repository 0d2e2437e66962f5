// The timeline: what frame items do to display lists, sprites with timelines of their own, key frames. Judged by
// pictures: r, g, b are squares of those colours on white (.).
#include <gtest/gtest.h>

#include <algorithm>

#include "support/playback.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::keyFrame;
using author::move;
using author::place;
using author::removeAt;

std::string shown(const Image& image) { return sketch(image, {{white, '.'}, {red, 'r'}, {green, 'g'}, {blue, 'b'}}); }

// The frames of a movie that is one pixel high: one text each.
std::vector<std::string> strips(const MovieFile& movie) {
    const Playback playback = play(visFile(movie));
    EXPECT_TRUE(playback.finished());
    EXPECT_EQ(playback.blocksLeft, 0);
    std::vector<std::string> texts;
    for (const Image& image : playback.frames) {
        texts.push_back(shown(image));
        texts.back().pop_back();
    }
    return texts;
}
using Strips = std::vector<std::string>;

// Squares of one pixel: 10 red, 11 green, 12 blue. 13 is red and 2 wide.
MovieFile strip(std::uint16_t width, std::initializer_list<Bytes> frames) {
    MovieFile movie = smallMovie(
        width, 1, {rectangle(10, 1, 1, 1), rectangle(11, 2, 1, 1), rectangle(12, 3, 1, 1), rectangle(13, 1, 2, 1)});
    movie.records.insert(movie.records.end(), frames);
    return movie;
}

TEST(DisplayList, DepthsArePositionsThatShift) {
    // Red, green and blue are placed on top of each other, then moved apart by position.
    EXPECT_EQ(strips(strip(4, {frameOf({place(10, 0), place(11, 0), place(12, 200), move(0, at(0, 0)),
                                        move(1, at(1, 0)), move(2, at(2, 0))}),
                               frameOf({removeAt(0), move(0, at(3, 0))}), frameOf({removeAt(9), move(9, at(0, 0))}),
                               frameOf({removeAt(1), removeAt(0)})})),
              (Strips{"grb.", "..br", "..br", "...."}));
}

TEST(DisplayList, HigherPositionsCoverLowerOnes) {
    EXPECT_EQ(strips(strip(3, {frameOf({place(13, 0), place(11, 1), move(1, at(1, 0))}),
                               frameOf({place(12, 1), move(1, at(1, 0))}), frameOf({removeAt(2)})})),
              (Strips{"rg.", "rg.", "rb."}));
}

TEST(DisplayList, WhatCannotBeShownPlacesNothing) {
    EXPECT_EQ(strips(strip(2, {frameOf({place(1, 0), place(500, 0), place(40, 0), place(11, 0)})})), (Strips{"g."}));
}

TEST(DisplayList, ABrokenCharacterEndsPlayback) {
    MovieFile movie =
        strip(2, {author::shape({.id = 20,
                                 .bounds = {},
                                 .outline = author::Outline().style({.line = {}, .fill0 = 33, .fill1 = {}}),
                                 .bitmapFills = {},
                                 .gradientFills = {}}),
                  frameOf({place(20, 0)})});
    EXPECT_TRUE(play(visFile(movie)).aborted(AbortReason::outOfMemory)) << "a style that nothing defines";
}

TEST(DisplayList, ItemsThatBreakOffAreBadContent) {
    for (const Bytes& items :
         {Bytes{0x13, 10}, Bytes{0x11, 10}, Bytes{0x51, 0}, Bytes{0x20}, Bytes{0x1F, 200, 0, 1}, Bytes{0xEF, 1, 0}}) {
        MovieFile movie = strip(2, {frameOf({place(10, 0)})});
        movie.records.push_back(author::frame(items));
        EXPECT_TRUE(play(visFile(movie)).aborted(AbortReason::badContent)) << int{items[0]};
    }
}

TEST(Sprites, PlayTheirOwnTimelineAndWrap) {
    const Bytes blinker =
        spriteOf(20, {frameOf({place(10, 0)}), frameOf({removeAt(0), place(11, 0)}), frameOf({move(0, at(1, 0))})});
    EXPECT_EQ(strips(strip(3, {blinker, frameOf({place(20, 0)}), frameOf({}), frameOf({}), frameOf({}),
                               frameOf({move(0, at(1, 0))})})),
              (Strips{"r..", "g..", ".g.", "r..", ".g."}));
}

TEST(Sprites, AreSteppedOnceInTheFrameThatPlacesThem) {
    const Bytes counter =
        spriteOf(20, {frameOf({place(10, 0)}), frameOf({move(0, at(1, 0))}), frameOf({move(0, at(2, 0))})});
    // A move in the placing frame steps the clip at once; the walk does not step it again.
    EXPECT_EQ(strips(strip(4, {counter, frameOf({place(20, 0), move(0, at(1, 0)), move(0, at(0, 0))}), frameOf({})})),
              (Strips{"r...", ".r.."}));
}

TEST(Sprites, NestAndCarryTheirChildrenAlong) {
    const Bytes inner = spriteOf(20, {frameOf({place(10, 0), move(0, at(1, 0))})});
    const Bytes outer = spriteOf(21, {frameOf({place(20, 0), move(0, at(2, 0)), place(11, 1)}), frameOf({})});
    EXPECT_EQ(strips(strip(8, {inner, outer, frameOf({place(21, 0), move(0, at(1, 0))}), frameOf({move(0, at(4, 0))}),
                               frameOf({removeAt(0)})})),
              (Strips{".g..r...", "....g..r", "........"}));
}

TEST(Sprites, ThatPlaceThemselvesComeToAnEnd) {
    MovieFile movie =
        strip(2, {spriteOf(20, {frameOf({place(20, 0), place(10, 1)})}), frameOf({place(20, 0)}), frameOf({})});
    EXPECT_EQ(strips(movie), (Strips{"r.", "r."}));
    MovieFile doubled = strip(2, {spriteOf(20, {frameOf({place(20, 0), place(20, 0)})}), frameOf({place(20, 0)})});
    EXPECT_TRUE(play(visFile(doubled)).aborted(AbortReason::outOfMemory)) << "too many for any budget";
}

TEST(Sprites, BrokenTimelinesEndPlayback) {
    MovieFile movie = strip(2, {spriteOf(20, {author::frame(Bytes{0x13, 10})}), frameOf({place(20, 0)})});
    EXPECT_TRUE(play(visFile(movie)).aborted(AbortReason::badContent));
    // Fewer frames than announced: the clip stands still.
    const Bytes shortOne =
        author::sprite({.id = 20, .frameCount = 3, .labels = {}, .keyFrames = {}, .timeline = frameOf({place(10, 0)})});
    EXPECT_EQ(strips(strip(2, {shortOne, frameOf({place(20, 0)}), frameOf({}), frameOf({}), frameOf({})})),
              (Strips(4, "r.")));
}

TEST(KeyFrames, RebuildTheListFromNothing) {
    EXPECT_EQ(
        strips(strip(3, {frameOf({place(10, 0), place(11, 1), move(1, at(1, 0))}),
                         keyFrame(30, 1, author::joined({place(12, 0), move(0, at(2, 0))})), frameOf({place(10, 0)})})),
        (Strips{"rg.", "..b", "r.b"}));
}

TEST(KeyFrames, FindAClipAgainByItsPlacement) {
    const Bytes counter =
        spriteOf(20, {frameOf({place(10, 0)}), frameOf({move(0, at(1, 0))}), frameOf({move(0, at(2, 0))})});
    const auto placed = [](std::uint16_t number) {
        return author::joined({author::instanceNumber(number), place(20, 0)});
    };
    EXPECT_EQ(strips(strip(4, {counter, frameOf({placed(7)}), frameOf({}), keyFrame(30, 2, placed(7)), frameOf({}),
                               keyFrame(31, 4, placed(8))})),
              (Strips{"r...", ".r..", ".r..", "..r.", "r..."}))
        << "found again it keeps its frame and is not stepped; with another number it begins anew";
}

TEST(Background, FillsTheScreenFromThenOn) {
    const Playback playback =
        play(visFile(strip(2, {frameOf({place(10, 0)}), author::backgroundColour(0x0000FF), frameOf({})})));
    ASSERT_EQ(playback.frames.size(), 2u);
    EXPECT_EQ(shown(playback.frames[0]), "r.\n");
    EXPECT_EQ(shown(playback.frames[1]), "rb\n");
}

// Drawing only what changed must show what drawing everything shows.
TEST(Redraw, ShowsThePictureThatAFullRedrawWouldShow) {
    const auto movie = [](bool full) {
        MovieFile file = smallMovie(40, 30, {author::solidFill(4, {.colour = 0x00FF00, .alpha = 100})});
        for (std::uint16_t id = 10; id < 34; ++id)
            file.records.push_back(rectangle(id, id % 2 == 0 ? 4 : 1, static_cast<std::int16_t>(3 + id % 5), 4));
        Bytes placed;
        for (std::uint16_t id = 10; id < 34; ++id) {
            const auto depth = static_cast<std::uint8_t>(id - 10);
            const Bytes here = author::joined(
                {place(id, depth),
                 move(depth, at(static_cast<std::int16_t>(id % 7 * 5), static_cast<std::int16_t>(id % 6 * 4)))});
            placed.insert(placed.end(), here.begin(), here.end());
        }
        file.records.push_back(author::frame(placed));
        for (int frame = 1; frame < 40; ++frame) {
            Bytes items;
            for (int i = 0; i < 1 + frame % 24; ++i) {
                const auto depth = static_cast<std::uint8_t>((frame * 5 + i * 7) % 23);
                const Bytes moved = move(depth, at(static_cast<std::int16_t>((frame * 3 + i * 11) % 44 - 2),
                                                   static_cast<std::int16_t>((frame + i * 5) % 34 - 2)));
                items.insert(items.end(), moved.begin(), moved.end());
            }
            if (frame == 20) {
                const Bytes removed = removeAt(5);
                items.insert(items.end(), removed.begin(), removed.end());
            }
            if (full) file.records.push_back(author::backgroundColour(0xFFFFFF));
            file.records.push_back(author::frame(items));
        }
        return play(visFile(file));
    };
    const Playback partial = movie(false), full = movie(true);
    ASSERT_EQ(partial.frames.size(), 40u);
    ASSERT_EQ(full.frames.size(), 40u);
    for (std::size_t i = 0; i < full.frames.size(); ++i) EXPECT_EQ(partial.frames[i], full.frames[i]) << "frame " << i;
}

TEST(PlayRecords, CollectFramesLargerThanAChunk) {
    MovieFile movie = strip(2, {frameOf({place(10, 0)})});
    Bytes items;
    for (int i = 0; i < 2500; ++i) {
        const Bytes placedAndRemoved = author::joined({place(11, 1), removeAt(1)});
        items.insert(items.end(), placedAndRemoved.begin(), placedAndRemoved.end());
    }
    const Bytes last = move(0, at(1, 0));
    items.insert(items.end(), last.begin(), last.end());
    ASSERT_GT(items.size(), 2u * 6144);
    movie.records.push_back(author::frame(items));
    movie.records.push_back(frameOf({place(12, 1)}));
    EXPECT_EQ(strips(movie), (Strips{"r.", ".r", "br"}));
}

TEST(PlayRecords, CollectKeyFrameListsLargerThanAChunk) {
    std::vector<std::uint16_t> frames(5000);
    for (std::uint16_t i = 0; i < frames.size(); ++i) frames[i] = static_cast<std::uint16_t>(i * 13);
    const Bytes list = author::keyFrameList(frames);
    ASSERT_GT(list.size(), 6144u);
    EXPECT_EQ(strips(strip(1, {list, frameOf({place(10, 0)})})), (Strips{"r"}));
}

TEST(PlayRecords, ReleaseCharacters) {
    MovieFile movie = strip(2, {frameOf({place(10, 0)}), frameOf({removeAt(0), place(11, 0)}),
                                author::releaseCharacters(std::vector<std::uint16_t>{10, 11, 999}),
                                frameOf({place(10, 1), author::move(1, at(1, 0))})});
    const Playback playback = play(visFile(movie));
    ASSERT_EQ(playback.frames.size(), 3u);
    EXPECT_EQ(shown(playback.frames[2]), "gr\n") << "what is shown stays, and what was released is decoded again";
    const auto decodings = std::ranges::count_if(playback.reads, [&](const calls::Read& read) {
        return read.offset == recordLocations(movie)[4].offset && read.count > 7;
    });
    EXPECT_EQ(decodings, 1) << "the first time its record was decoded as it came";
}

TEST(PlayRecords, SkipWhatTheyDoNotKnow) {
    EXPECT_EQ(
        strips(strip(1, {author::record(41, Bytes(20000, 1)), frameOf({place(10, 0)}), author::record(0, Bytes(9, 1)),
                         author::record(255, {}), author::record(100, Bytes(200, 1)), frameOf({removeAt(0)})})),
        (Strips{"r", "."}));
}

// A timeline of records that are no frames is looked through once a cycle at most, however many instances there are.
TEST(Clips, OfSpritesWithoutFramesCostNoMoreThanTheirShare) {
    Bytes junk;
    for (int i = 0; i < 60000; ++i) junk.insert(junk.end(), {48, 0});
    const Bytes sprite = author::sprite(
        {.id = 20, .frameCount = 9, .keyFrameCount = 1, .labels = {}, .keyFrames = {}, .timeline = junk});
    Bytes items;
    for (int i = 0; i < 9000; ++i) {
        const Bytes once = author::joined({author::place(20, 0), author::removeAt(0)});
        items.insert(items.end(), once.begin(), once.end());
    }
    const Playback playback = play(visFile(smallMovie(4, 4, {sprite, author::frame(items), frameOf({})})));
    EXPECT_TRUE(playback.finished());
}

}  // namespace
}  // namespace qel::test
