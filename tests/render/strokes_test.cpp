// Strokes: pictures of lines, and every line against the walk pixel by pixel.
#include <gtest/gtest.h>

#include <random>

#include "render/blend.h"
#include "render/fixed.h"
#include "render/line.h"
#include "support/live_movie.h"
#include "support/shape_picture.h"

namespace qel::test {
namespace {

using author::Outline;

// A line character of a width, red, and an outline that it draws.
std::string stroked(std::uint16_t width, std::uint16_t height, unsigned lineWidth, Outline outline) {
    Outline whole;
    whole.style({.line = 5, .fill0 = {}, .fill1 = {}});
    const Bytes path = outline.bytes();
    author::ShapeRecord shape{
        .id = 10, .bounds = {}, .outline = whole, .hasFill = false, .bitmapFills = {}, .gradientFills = {}};
    for (std::size_t at = 0; at < path.size();) {
        const unsigned header = path[at], length = header & 31;
        shape.outline.pathRecord(header >> 5, std::span(path).subspan(at + 1, length));
        at += 1 + length;
    }
    return picture(firstFrame(width, height,
                              {author::lineStyle(5, {.colour = 0xFF0000}, lineWidth), author::shape(shape),
                               frameOf({author::place(10, 0)})}));
}

TEST(Strokes, AreOnePixelWideBelowTwo) {
    const Outline zigzag = Outline().moveTo({0, 0}).lineTo({7, 3}).lineTo({4, 5});
    const std::string expected = R"(
rr......
..rr....
....rr..
......rr
.....rr.
....r...
)";
    EXPECT_EQ(stroked(8, 6, 0, zigzag), expected) << "also those of width 0";
    EXPECT_EQ(stroked(8, 6, 1, zigzag), expected);
}

TEST(Strokes, GrowWiderTheMoreTheySlant) {
    EXPECT_EQ(stroked(12, 4, 3, Outline().moveTo({2, 1}).lineTo({9, 1})), R"(
..rrrrrrrr..
..rrrrrrrr..
..rrrrrrrr..
............
)");
    EXPECT_EQ(stroked(10, 5, 3, Outline().moveTo({2, 0}).lineTo({6, 4})), R"(
rrrrr.....
.rrrrr....
..rrrrr...
...rrrrr..
....rrrrr.
)") << "five pixels across at 45 degrees";
    EXPECT_EQ(stroked(6, 4, 4, Outline().moveTo({3, 0}).lineTo({3, 2})), R"(
.rrrr.
.rrrr.
.rrrr.
......
)") << "an even width has its odd pixel on the left";
}

TEST(Strokes, CloseTheCornersOfThickLinesOnly) {
    const Outline corner = Outline().moveTo({1, 3}).lineTo({8, 3}).lineTo({8, 9});
    EXPECT_EQ(stroked(12, 10, 4, corner), R"(
............
.rrrrrrrr...
.rrrrrrrr...
.rrrrrrrrr..
.rrrrrrrrr..
......rrrr..
......rrrr..
......rrrr..
......rrrr..
......rrrr..
)");
    EXPECT_EQ(stroked(16, 12, 9, Outline().moveTo({1, 4}).lineTo({9, 4}).lineTo({9, 11})), R"(
.rrrrrrrrr......
.rrrrrrrrr......
.rrrrrrrrrr.....
.rrrrrrrrrrr....
.rrrrrrrrrrrrr..
.rrrrrrrrrrrrr..
.rrrrrrrrrrrrr..
.rrrrrrrrrrrrr..
.rrrrrrrrrrrrr..
.....rrrrrrrrr..
.....rrrrrrrrr..
.....rrrrrrrrr..
)");
}

TEST(Strokes, CutCurvesIntoPieces) {
    EXPECT_EQ(stroked(13, 7, 1, Outline().moveTo({0, 6}).curveBy({6, -12}, {6, 12})), R"(
......r......
....rr.rr....
...r.....r...
..r.......r..
..r........r.
.r.........r.
r...........r
)");
}

// --- every line against a plain walk

struct Canvas {
    static constexpr int width = 40, height = 30;
    std::vector<std::uint16_t> pixels = std::vector<std::uint16_t>(width * height, 0x4208);
    RenderContext context{nullptr};

    Canvas() {
        context.pixels = pixels.data();
        context.rowLength = width;
        context.height = height;
    }
    void put(const Rect& clip, int x, int y, std::uint16_t colour, std::uint8_t alpha) {
        if (x < clip.xMin || x > clip.xMax || y < clip.yMin || y > clip.yMax) return;
        std::uint16_t& pixel = pixels[static_cast<std::size_t>(y * width + x)];
        pixel = alpha == 255 ? colour : blend565(pixel, colour, alpha);
    }
};

// A run of pixels for every step along the longer axis. The line lies on the screen.
void walkLine(Canvas& canvas, const Pen& pen, Point start, Point end) {
    const int dx = end.x - start.x, dy = end.y - start.y;
    const bool steep = std::abs(dx) <= std::abs(dy);
    const int major = std::abs(steep ? dy : dx), minor = std::abs(steep ? dx : dy);
    const int slope = fixedDivide(2 * minor, 2 * major) >> 8;
    const int length = pen.width < 2 ? 1 : (((slope * slope >> 1) + 0x10000) * pen.width + 32768) >> 16;
    int error = 2 * minor - major, x = start.x, y = start.y;
    for (int i = 0; i <= major; ++i) {
        for (int k = 0; k < length; ++k) {
            const int offset = k - (length >> 1);
            canvas.put(pen.clip, steep ? x + offset : x, steep ? y : y + offset, pen.colour, pen.alpha);
        }
        if (error >= 0) {
            error -= 2 * major;
            (steep ? x : y) += (steep ? dx : dy) < 0 ? -1 : 1;
        }
        error += 2 * minor;
        (steep ? y : x) += (steep ? dy : dx) < 0 ? -1 : 1;
    }
}

TEST(Lines, AreTheWalkPixelByPixelWhateverTheClip) {
    std::mt19937 random(3);
    const auto point = [&] {
        return Point{static_cast<std::int16_t>(random() % Canvas::width),
                     static_cast<std::int16_t>(random() % Canvas::height)};
    };
    for (int round = 0; round < 4000; ++round) {
        Canvas drawn, walked;
        const Point a = point(), b = point(), from = point(), to = point();
        const Rect clip = round % 2 == 0
                              ? screenRect(drawn.context)
                              : Rect{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
        const Pen pen{.context = drawn.context,
                      .screen = screenRect(drawn.context),
                      .clip = clip,
                      .colour = 0xF81F,
                      .alpha = static_cast<std::uint8_t>(round % 3 == 0 ? 255 : 90),
                      .width = static_cast<std::uint8_t>(random() % 21)};
        drawLine(pen, from, to);
        walkLine(walked, pen, from, to);
        ASSERT_EQ(drawn.pixels, walked.pixels)
            << from.x << ',' << from.y << " to " << to.x << ',' << to.y << " width " << int{pen.width};
    }
}

TEST(Lines, AreCutAtTheScreenAndWhatLiesBeyondOneSideIsNotDrawn) {
    Canvas canvas;
    const std::vector<std::uint16_t> empty = canvas.pixels;
    const Pen pen{.context = canvas.context,
                  .screen = screenRect(canvas.context),
                  .clip = screenRect(canvas.context),
                  .colour = 0xFFFF,
                  .width = 20};
    for (const auto& [from, to] : {std::pair<Point, Point>{{-5, 3}, {-1, 20}},
                                   {{40, -9}, {32767, 40}},
                                   {{-32768, -32768}, {32767, -1}},
                                   {{0, 30}, {39, 30}}}) {
        EXPECT_EQ(drawLine(pen, from, to), LineDirection::none);
        EXPECT_EQ(drawJoinedLine(pen, from, to, LineDirection::horizontal), LineDirection::none);
    }
    EXPECT_EQ(canvas.pixels, empty);
    EXPECT_EQ(drawLine(pen, {-32768, 15}, {32767, 15}), LineDirection::horizontal);
    EXPECT_NE(canvas.pixels[15 * Canvas::width], empty[0]);
    EXPECT_EQ(drawLine(pen, {-32768, -32768}, {32767, 32767}), LineDirection::vertical) << "one diagonal is steep";
}

}  // namespace
}  // namespace qel::test
