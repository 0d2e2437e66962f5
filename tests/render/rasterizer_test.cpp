// Scan conversion, by pictures a person can check: each letter is a fill, a dot is the background.
#include <gtest/gtest.h>

#include "render/blend.h"
#include "render/curve.h"
#include "render/fixed.h"
#include "render/matrix.h"
#include "support/playback.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::Outline;

constexpr std::uint16_t none = noCharacter;

Outline& polygon(Outline& outline, std::initializer_list<Point> points) {
    outline.moveTo(*points.begin());
    for (const Point point : points)
        if (&point != points.begin()) outline.lineTo(point);
    return outline.lineTo(*points.begin());
}

// The picture of one shape whose outline uses the fills 1 red, 2 green, 3 blue.
std::string drawn(std::uint16_t width, std::uint16_t height, const Outline& outline,
                  const Matrix& matrix = identityMatrix) {
    const Bytes shape =
        author::shape({.id = 10, .bounds = {}, .outline = outline, .bitmapFills = {}, .gradientFills = {}});
    const Playback playback =
        play(visFile(smallMovie(width, height, {shape, frameOf({author::place(10, 0), author::move(0, matrix)})})));
    EXPECT_TRUE(playback.finished());
    if (playback.frames.empty()) return "";
    return "\n" + sketch(playback.frames[0], {{white, '.'}, {red, 'r'}, {green, 'g'}, {blue, 'b'}});
}

Outline filled(std::uint16_t fill, std::initializer_list<Point> points) {
    Outline outline;
    outline.style({.line = none, .fill0 = fill, .fill1 = none});
    return polygon(outline, points);
}

TEST(Rasterizer, CoversFromTheFirstCrossingToBeforeTheLast) {
    EXPECT_EQ(drawn(6, 4, filled(1, {{1, 1}, {4, 1}, {4, 3}, {1, 3}})), R"(
......
.rrr..
.rrr..
......
)");
    EXPECT_EQ(drawn(6, 3, filled(1, {{0, 1}, {6, 1}, {6, 2}, {0, 2}})), R"(
......
rrrrrr
......
)") << "an edge from row 1 to row 2 covers row 1 only";
}

TEST(Rasterizer, StopsAtTheScreen) {
    EXPECT_EQ(drawn(4, 3, filled(1, {{-500, -500}, {500, -500}, {500, 2}, {-500, 2}})), R"(
rrrr
rrrr
....
)");
    EXPECT_EQ(drawn(4, 3, filled(1, {{-3, 1}, {2, 1}, {2, 900}, {-3, 900}})), R"(
....
rr..
rr..
)");
}

TEST(Rasterizer, FillsAStarByTheEvenOddRule) {
    EXPECT_EQ(drawn(15, 14, filled(1, {{7, 0}, {11, 13}, {0, 5}, {14, 5}, {3, 13}})), R"(
...............
...............
......rr.......
......rr.......
......rr.......
rrrrr....rrrrr.
.rrrr....rrrr..
...rr....rr....
....r....r.....
....rr...r.....
....rrrrrr.....
....rr..rr.....
...r......r....
...............
)");
}

TEST(Rasterizer, DrawsTheHigherOfOverlappingFills) {
    Outline outline = filled(2, {{0, 0}, {4, 0}, {4, 2}, {0, 2}});
    outline.style({.line = {}, .fill0 = 1, .fill1 = {}});
    polygon(outline, {{2, 1}, {6, 1}, {6, 3}, {2, 3}});
    outline.style({.line = {}, .fill0 = 3, .fill1 = {}});
    polygon(outline, {{3, 0}, {4, 0}, {4, 3}, {3, 3}});
    EXPECT_EQ(drawn(7, 3, outline), R"(
gggb...
gggbrr.
..rbrr.
)");
}

TEST(Rasterizer, AnEdgeMayChangeFromOneFillToAnother) {
    Outline outline;
    outline.style({.line = none, .fill0 = 1, .fill1 = none})
        .moveTo({3, 0})
        .lineTo({0, 0})
        .lineTo({0, 2})
        .lineTo({3, 2});
    outline.style({.line = none, .fill0 = 1, .fill1 = 2}).moveTo({3, 0}).lineTo({3, 2});
    outline.style({.line = none, .fill0 = none, .fill1 = 2})
        .moveTo({3, 2})
        .lineTo({6, 2})
        .lineTo({6, 0})
        .lineTo({3, 0});
    EXPECT_EQ(drawn(7, 2, outline), R"(
rrrggg.
rrrggg.
)");
}

TEST(Rasterizer, AnOpenOutlineLeaksIntoNothing) {
    Outline outline;
    outline.style({.line = none, .fill0 = 1, .fill1 = none}).moveTo({1, 0}).lineTo({1, 2});
    outline.moveTo({0, 2}).lineTo({0, 3}).moveTo({2, 2}).lineTo({2, 3});
    EXPECT_EQ(drawn(4, 3, outline), R"(
....
....
rr..
)");
}

// The turn of a curve is found by reciprocals that are rounded down: at 127/256, where 128/256 would be right, and from
// there on every step truncates. So the arch leans to the left, as on the device.
TEST(Rasterizer, FollowsCurvesAndTheirTurns) {
    Outline round;
    round.style({.line = none, .fill0 = 1, .fill1 = none}).moveTo({0, 6}).curveBy({6, -12}, {6, 12});
    round.lineTo({0, 6});
    EXPECT_EQ(drawn(13, 7, round), R"(
...rrr.......
..rrrrrr.....
..rrrrrrr....
.rrrrrrrrr...
.rrrrrrrrr...
rrrrrrrrrrr..
.............
)");
}

TEST(Rasterizer, FollowsTheMatrix) {
    const Outline box = filled(1, {{0, 0}, {4, 0}, {4, 2}, {0, 2}});
    EXPECT_EQ(drawn(6, 5, box, {.a = 0, .b = fixedOne, .c = -fixedOne, .d = 0, .tx = 3, .ty = 0}), R"(
.rr...
.rr...
.rr...
.rr...
......
)") << "a quarter turn";
    EXPECT_EQ(drawn(6, 2, box, {.a = fixedOne / 2, .b = 0, .c = 0, .d = fixedOne / 2, .tx = 1, .ty = 0}), R"(
.rr...
......
)");
}

TEST(Rasterizer, TranslucentFillsMixWithWhatLiesBelow) {
    MovieFile movie = smallMovie(
        3, 1,
        {author::solidFill(4, {.colour = 0xFFFFFF, .alpha = 128}), author::backgroundColour(0x000000),
         rectangle(10, 4, 2, 1), rectangle(11, 4, 1, 1), frameOf({author::place(10, 0), author::place(11, 1)})});
    const Playback playback = play(visFile(movie));
    ASSERT_EQ(playback.frames.size(), 1u);
    EXPECT_EQ(playback.frames[0].pixels, (std::vector<std::uint16_t>{blend565(0x7BEF, 0xFFFF, 128), 0x7BEF, 0x0000}));
}

TEST(Rasterizer, GivesUpWhenItsEdgesAreUsedUp) {
    Outline comb;
    comb.style({.line = none, .fill0 = 1, .fill1 = none});
    for (int i = 0; i < 7100; ++i) comb.moveTo({static_cast<std::int16_t>(i % 200), 0}).lineBy({0, 3});
    const Bytes shape =
        author::shape({.id = 10, .bounds = {}, .outline = comb, .bitmapFills = {}, .gradientFills = {}});
    PlayOptions options;
    options.session.player.budget = 2000000;
    const Playback playback = play(visFile(smallMovie(200, 3, {shape, frameOf({author::place(10, 0)})})), options);
    EXPECT_TRUE(playback.aborted(AbortReason::outOfMemory));
    EXPECT_EQ(playback.blocksLeft, 0);
}

TEST(Curves, AreCutByTheirBend) {
    struct Row {
        std::int16_t bend;
        std::int32_t step;
    };
    for (const Row& row : {Row{0, 128}, Row{3, 128}, Row{4, 86}, Row{16, 64}, Row{30, 52}, Row{31, 43}, Row{64, 37},
                           Row{80, 32}, Row{100, 29}, Row{128, 26}, Row{129, 20}, Row{200, 20}})
        EXPECT_EQ(curveStep({0, 0}, {100, row.bend}, {200, 0}), row.step) << row.bend;
    EXPECT_EQ(curveStep({0, 0}, {1, 1}, {2, 2}), 256) << "tiny: one piece";
    EXPECT_EQ(curvePoint({0, 0}, {50, 100}, {100, 0}, 128), (Point{50, 50}));
    EXPECT_EQ(curvePoint({0, 0}, {50, 100}, {100, 0}, 257), (Point{100, 0})) << "past the end it is the end";
}

TEST(Fixed, DividesAsTheDeviceDoes) {
    EXPECT_EQ(fixedDivide(7, 7), 0x10000);
    EXPECT_EQ(fixedDivide(-7, 7), -0x10000);
    EXPECT_EQ(fixedDivide(1, 3), 21845);
    EXPECT_EQ(fixedDivide(2, 3), 2 * 21845) << "by the reciprocal, not by dividing";
    EXPECT_EQ(fixedDivide(2, -3), -2 * 21845);
    EXPECT_EQ(fixedDivide(1000, 600), (1000 << 16) / 600);
    EXPECT_EQ(edgeSlope(10, 3), (10 * ((1 << 23) / 3)) >> 7);
    EXPECT_EQ(edgeSlope(-700, 600), (-700 * 65536) / 600);
}

TEST(StageToScreen, FitsOrCentres) {
    EXPECT_EQ(stageToScreen(100, 50, 200, 200, false), (Matrix{fixedOne, 0, 0, fixedOne, 50, 75}))
        << "room on both sides";
    EXPECT_EQ(stageToScreen(100, 50, 200, 200, true), (Matrix{2 * fixedOne, 0, 0, 2 * fixedOne, 0, 50}));
    EXPECT_EQ(stageToScreen(50, 100, 200, 200, true), (Matrix{2 * fixedOne, 0, 0, 2 * fixedOne, 50, 0}));
    EXPECT_EQ(stageToScreen(100, 100, 100, 100, false), identityMatrix);
    EXPECT_EQ(stageToScreen(200, 100, 100, 100, false), (Matrix{fixedOne / 2, 0, 0, fixedOne / 2, 0, 25}));
}

}  // namespace
}  // namespace qel::test
