// Gotos of the root timeline and of clips, and what clips keep over them. Pictures: r, g, b are squares on white (.).
#include "movie/gotos.h"

#include <gtest/gtest.h>

#include "movie/refresh.h"
#include "movie/timeline.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::keyFrame;
using author::move;
using author::place;

std::string shown(const Image& image) {
    std::string text = sketch(image, {{white, '.'}, {red, 'r'}, {green, 'g'}, {blue, 'b'}});
    text.pop_back();
    return text;
}

// Eight frames, a strip of eight pixels: the red square stands at the column of the frame's number. Frames 0 and 4 are
// key frames 40 and 44; the green square appears with frame 5.
MovieFile walk(bool indexed) {
    MovieFile movie = smallMovie(8, 1, {rectangle(10, 1, 1, 1), rectangle(11, 2, 1, 1)});
    const auto column = [](int x) { return move(0, at(static_cast<std::int16_t>(x), 0)); };
    movie.records.push_back(keyFrame(40, 0, author::joined({place(10, 0), column(0)})));
    for (const int x : {1, 2, 3}) movie.records.push_back(author::frame(column(x)));
    movie.records.push_back(keyFrame(44, 4, author::joined({place(10, 0), column(4)})));
    movie.records.push_back(author::frame(author::joined({column(5), place(11, 1)})));
    for (const int x : {6, 7}) movie.records.push_back(author::frame(column(x)));
    movie.frameCount = 8;
    if (indexed) movie.properties.keyFrameIndex(std::vector<author::Properties::KeyFrame>{{0, 40}, {4, 44}});
    return movie;
}

// The strip that each frame shows after a goto from a frame to another, until the movie ends.
TEST(RootGoto, BuildsTheFrameFromTheLastKeyFrameAndPlaysOnBehindIt) {
    for (const bool indexed : {true, false})
        for (std::uint16_t from = 1; from <= 8; ++from)
            for (std::uint16_t to = 0; to < 8; ++to) {
                LiveMovie live(visFile(walk(indexed)));
                live.playFrames(from);
                ASSERT_TRUE(live.playUntil(Phase::queuedActions));
                ASSERT_EQ(gotoRootFrame(live.movie(), to), Result::done) << from << " to " << to;
                EXPECT_EQ(live.movie().frameIndex, to + 1u);
                ASSERT_EQ(refreshObjects(live.movie()), Result::done);
                const Rect bounds = boundsOf(*live.movie().root.first);
                EXPECT_EQ(bounds.xMin + 1, to) << "a pixel more on each side";
                EXPECT_EQ(objectCount(live.movie().root), to >= 5 ? 2u : 1u);
                live.playFrames(100);
                EXPECT_EQ(live.seen().frames.size(), std::size_t(from) + 7 - to) << from << " to " << to;
            }
}

TEST(RootGoto, MovesAClipThatItsKeyFrameHasFoundWhereALaterFrameDoes) {
    const Bytes placed = author::joined({author::instanceNumber(3), place(20, 0), move(0, at(1, 0))});
    MovieFile movie = smallMovie(8, 1,
                                 {rectangle(10, 1, 1, 1), spriteOf(20, {frameOf({place(10, 0)})}),
                                  keyFrame(40, 0, placed), frameOf({move(0, at(2, 0))}), frameOf({})});
    movie.frameCount = 3;
    movie.properties.keyFrameIndex(std::vector<author::Properties::KeyFrame>{{0, 40}});
    LiveMovie live(visFile(movie));
    live.playFrames(1);
    DisplayObject& clip = *live.movie().root.first;
    asClip(&clip)->matrixFromScript = true;
    clip.matrix.tx = 5;
    ASSERT_EQ(gotoRootFrame(live.movie(), 0), Result::done);
    EXPECT_EQ(clip.matrix.tx, 5) << "a script has put it there";
    ASSERT_EQ(gotoRootFrame(live.movie(), 1), Result::done);
    ASSERT_EQ(live.movie().root.first, &clip);
    EXPECT_EQ(clip.matrix.tx, 2);
}

TEST(RootGoto, IgnoresWhatIsNotThere) {
    MovieFile movie = walk(true);
    movie.properties.keyFrameIndex(std::vector<author::Properties::KeyFrame>{{0, 10}, {6, 999}});
    LiveMovie live(visFile(movie));
    live.playFrames(3);
    for (const std::uint16_t frame : {std::uint16_t{2}, std::uint16_t{7}, std::uint16_t{8}, std::uint16_t{65535}})
        EXPECT_EQ(gotoRootFrame(live.movie(), frame), Result::nothing) << frame;
    EXPECT_EQ(live.movie().frameIndex, 3u);
}

TEST(RootGoto, FindsFramesBehindLongRecordsAndLongFramesThemselves) {
    MovieFile movie = walk(true);
    Bytes items;
    for (int i = 0; i < 700; ++i) {
        const Bytes both = author::joined({place(11, 1), author::removeAt(1)});
        items.insert(items.end(), both.begin(), both.end());
    }
    ASSERT_GT(items.size(), 2048u);
    const auto at6 = movie.records.end() - 1;
    movie.records.insert(at6, {author::record(100, Bytes(200, 1)), author::record(41, Bytes(5000, 1))});
    movie.records.back() = author::frame(author::joined({items, move(0, at(7, 0))}));
    LiveMovie live(visFile(movie));
    live.playFrames(1);
    ASSERT_EQ(gotoRootFrame(live.movie(), 7), Result::done);
    live.playFrames(2);
    EXPECT_EQ(live.seen().frames.size(), 1u) << "nothing is left behind the last frame";
    EXPECT_EQ(live.seen().ending.kind, Ending::Kind::finished);
}

// A clip of six frames like the walk: frames 0 and 3 are key frames.
MovieFile clipWalk(std::uint16_t keyFrameCount) {
    const auto column = [](int x) { return move(0, at(static_cast<std::int16_t>(x), 0)); };
    const Bytes timeline = author::joined({keyFrame(50, 0, author::joined({place(10, 0), column(0)})),
                                           author::frame(column(1)), author::frame(column(2)),
                                           keyFrame(53, 3, author::joined({place(10, 0), place(11, 1), column(3)})),
                                           author::frame(column(4)), author::frame(column(5))});
    MovieFile movie = smallMovie(8, 1,
                                 {rectangle(10, 1, 1, 1), rectangle(11, 2, 1, 1),
                                  author::sprite({.id = 20,
                                                  .frameCount = 6,
                                                  .keyFrameCount = keyFrameCount,
                                                  .labels = {{3, "middle"}},
                                                  .keyFrames = {0, 3},
                                                  .timeline = timeline}),
                                  frameOf({place(20, 0)})});
    for (int i = 0; i < 12; ++i) movie.records.push_back(frameOf({}));
    return movie;
}

TEST(ClipGoto, BuildsTheFrameFromTheLastKeyFrame) {
    const std::vector<std::string> frames = {"r.......", ".r......", "..r.....", "g..r....", "g...r...", "g....r.."};
    for (const std::uint16_t keyFrameCount : {std::uint16_t{2}, std::uint16_t{1}, std::uint16_t{0}})
        for (std::uint16_t to = 0; to < 6; ++to) {
            LiveMovie live(visFile(clipWalk(keyFrameCount)));
            live.playFrames(2);
            ASSERT_TRUE(live.playUntil(Phase::queuedActions));
            ClipInstance& clip = *asClip(live.movie().root.first);
            clip.stopped = true;
            ASSERT_EQ(gotoClipFrame(live.movie(), clip, to), Result::done);
            EXPECT_FALSE(clip.stopped);
            clip.stopped = true;
            live.playFrames(3);
            EXPECT_EQ(shown(live.screen()), frames[to]) << to;
            clip.stopped = false;
            live.playFrames(4);
            EXPECT_EQ(shown(live.screen()), frames[(to + 1) % 6u]) << to;
        }
}

TEST(ClipGoto, IsBoundedWhereAClipPlacesAndRemovesItselfWithoutEnd) {
    // Every frame of 20 places itself, steps the copy by a move and removes it: 64 deep, 6 times at each level.
    Bytes items;
    for (int i = 0; i < 6; ++i) {
        const Bytes once = author::joined({place(20, 0), move(0, at(0, 0)), author::removeAt(0)});
        items.insert(items.end(), once.begin(), once.end());
    }
    MovieFile movie = smallMovie(2, 1, {spriteOf(20, {author::frame(items)}), frameOf({place(20, 0)}), frameOf({})});
    const Playback playback = play(visFile(movie));
    EXPECT_TRUE(playback.finished());
    EXPECT_LT(playback.allocations, 3'000'000u);
}

TEST(Clips, AreNumberedInTheOrderTheyComeUnlessTheyHaveANameOfTheirOwn) {
    const Bytes inner = spriteOf(20, {frameOf({})});
    const Bytes outer = spriteOf(21, {frameOf({place(20, 0)})});
    const auto named = author::placeClip({.characterId = 20, .depth = 1, .name = "hero", .handlers = {}});
    LiveMovie live(
        visFile(smallMovie(2, 1, {inner, outer, frameOf({place(21, 0), named, place(20, 2)}), frameOf({})})));
    live.playFrames(1);
    std::vector<std::string> names;
    for (DisplayObject* object = live.movie().root.first; object; object = nextInDrawingOrder(object))
        names.emplace_back(asClip(object)->name.begin());
    EXPECT_EQ(names, (std::vector<std::string>{"instance0", "instance2", "hero", "instance1"}));
}

TEST(Clips, KeepTheHandlersTheyWerePlacedWith) {
    const Bytes placed = author::joined(
        {author::instanceNumber(3),
         author::placeClip({.characterId = 20,
                            .depth = 0,
                            .name = "first",
                            .handlers = {{.onLoad = true, .code = {1}}, {.onFrame = true, .code = {2, 3}}}})});
    const Bytes again =
        author::joined({author::instanceNumber(3),
                        author::placeClip({.characterId = 20, .depth = 0, .name = "second", .handlers = {}})});
    LiveMovie live(visFile(smallMovie(2, 1, {spriteOf(20, {frameOf({})}), frameOf({placed}), keyFrame(40, 1, again)})));
    live.playFrames(2);
    const ClipInstance& clip = *asClip(live.movie().root.first);
    EXPECT_STREQ(clip.name.begin(), "first") << "found again, it is what it was";
    EXPECT_TRUE(clip.handlers.onLoad && clip.handlers.onFrame && !clip.handlers.onUnload);
    ASSERT_EQ(clip.handlers.list.size(), 2u);
    EXPECT_EQ(clip.handlers.list[1].code.size(), 2u);
}

TEST(Clips, ColoursReachEverythingBelow) {
    // 128 of 256 of the clip, then of the object: a quarter of red's 31 is 7.
    const ColourTransform half{.redMultiplier = 128};
    MovieFile movie = smallMovie(
        1, 1,
        {rectangle(10, 1, 1, 1), spriteOf(20, {frameOf({place(10, 0), author::colour(0, half)})}),
         frameOf({place(20, 0), author::colour(0, half)}), frameOf({author::colour(0, {.blueOffset = 255})})});
    const Playback playback = play(visFile(movie));
    ASSERT_EQ(playback.frames.size(), 2u);
    EXPECT_EQ(playback.frames[0].at(0, 0), 7 << 11);
    EXPECT_EQ(playback.frames[1].at(0, 0), (15 << 11) | 31);
}

TEST(Clips, ThatAreNotVisibleAreNotDrawnAndComeBackAsTheyAre) {
    LiveMovie live(
        visFile(smallMovie(2, 1,
                           {rectangle(10, 1, 1, 1), spriteOf(20, {frameOf({place(10, 0)}), frameOf({})}),
                            frameOf({place(20, 0)}), frameOf({}), frameOf({move(0, at(1, 0))}), frameOf({})})));
    live.playFrames(1);
    ClipInstance& clip = *asClip(live.movie().root.first);
    clip.visible = false;
    live.playFrames(3);
    EXPECT_EQ(shown(live.seen().frames[1]), "..");
    clip.visible = true;
    live.playFrames(4);
    EXPECT_EQ(shown(live.screen()), ".r");
}

}  // namespace
}  // namespace qel::test
