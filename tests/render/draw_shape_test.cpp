// Drawing whole shapes with everything that they can have: a part of the picture is the part of the whole picture.
#include "render/draw_shape.h"

#include <gtest/gtest.h>

#include <random>

#include "render/style_copies.h"
#include "support/live_movie.h"
#include "support/shape_picture.h"

namespace qel::test {
namespace {

constexpr std::uint16_t width = 48, height = 40;

class Dice {
  public:
    explicit Dice(unsigned seed) : random_(seed) {}
    int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    Point point() { return {static_cast<std::int16_t>(below(80) - 16), static_cast<std::int16_t>(below(70) - 15)}; }

  private:
    std::mt19937 random_;
};

// Sub-paths of lines and curves, closed or open, with any styles on either side.
author::Outline anyOutline(Dice& dice) {
    constexpr std::uint16_t fills[] = {1, 2, 4, 6, 7, noCharacter}, lines[] = {5, 8, noCharacter};
    author::Outline outline;
    for (int path = dice.below(3); path >= 0; --path) {
        outline.style({.line = lines[dice.below(3)], .fill0 = fills[dice.below(6)], .fill1 = fills[dice.below(6)]});
        const Point start = dice.point();
        outline.moveTo(start);
        for (int i = dice.below(5) + 2; i > 0; --i) {
            if (dice.below(2) == 0)
                outline.lineTo(dice.point());
            else
                outline.curveBy(
                    {static_cast<std::int16_t>(dice.below(60) - 30), static_cast<std::int16_t>(dice.below(60) - 30)},
                    {static_cast<std::int16_t>(dice.below(50) - 25), static_cast<std::int16_t>(dice.below(50) - 25)});
        }
        if (dice.below(4) != 0) outline.lineTo(start);
    }
    return outline;
}

// A movie that shows a shape of any outline with solid, translucent, linear and radial fills and thin and thick lines.
Bytes anyShapeMovie(Dice& dice) {
    const std::vector<author::GradientStop> stops{{0, 0xFF0000, 30}, {90, 0x00FF00, 255}, {255, 0x0000FF, 140}};
    const Matrix scaled{.a = 9000, .b = dice.below(6000), .c = dice.below(6000) - 3000, .d = 9000, .tx = 20, .ty = 20};
    return visFile(smallMovie(
        width, height,
        {author::solidFill(4, {.colour = 0x8040C0, .alpha = 100}), author::lineStyle(5, {.colour = 0x205020}, 1),
         author::gradientFill(6, author::GradientType::linear, scaled, stops),
         author::gradientFill(7, author::GradientType::radial, scaled, stops),
         author::lineStyle(8, {.colour = 0xFF8000, .alpha = 150}, static_cast<unsigned>(dice.below(20))),
         shapeOf(10, anyOutline(dice)), frameOf({author::place(10, 0)}), frameOf({})}));
}

struct Drawing {
    std::vector<std::uint16_t> pixels = std::vector<std::uint16_t>(std::size_t{width} * height, 0x6B4D);
};

Drawing draw(Movie& movie, ShapeInstance& instance, const Rect& clip) {
    Drawing drawing;
    std::uint16_t* const screen = std::exchange(movie.render.pixels, drawing.pixels.data());
    EXPECT_EQ(drawShape(movie.render, ShapeKind::plain, instance.shape->geometry, instance.placed, clip), Result::done);
    movie.render.pixels = screen;
    return drawing;
}

// How many pixels of a part differ from the whole picture inside the clip, or from the ground outside it.
int wrongPixels(const Drawing& whole, const Drawing& part, const Rect& clip) {
    const Drawing ground;
    int wrong = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto i = static_cast<std::size_t>(y * width + x);
            const bool inside = x >= clip.xMin && x <= clip.xMax && y >= clip.yMin && y <= clip.yMax;
            wrong += part.pixels[i] != (inside ? whole : ground).pixels[i];
        }
    return wrong;
}

TEST(DrawShape, ShowsInAPartOfTheScreenWhatTheWholeShowsThere) {
    Dice dice(17);
    for (int round = 0; round < 150; ++round) {
        LiveMovie live(anyShapeMovie(dice));
        live.playFrames(1);
        auto& instance = static_cast<ShapeInstance&>(*live.movie().root.first);
        const Drawing whole = draw(live.movie(), instance, screenRect(live.movie().render));
        EXPECT_EQ(whole.pixels, draw(live.movie(), instance, screenRect(live.movie().render)).pixels) << "no traces";
        for (int part = 0; part < 12; ++part) {
            const int x = dice.below(width), y = dice.below(height);
            const Rect clip{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                            static_cast<std::int16_t>(x + dice.below(width - x)),
                            static_cast<std::int16_t>(y + dice.below(height - y))};
            ASSERT_EQ(wrongPixels(whole, draw(live.movie(), instance, clip), clip), 0) << round << " part " << part;
        }
    }
}

// What a table says of its only fill is a shorter way to the same picture.
TEST(DrawShape, FillsAShapeOfOneFillAsOneOfMany) {
    Dice dice(23);
    for (int round = 0; round < 150; ++round) {
        author::Outline one;
        one.style({.line = noCharacter, .fill0 = 1, .fill1 = noCharacter}).moveTo(dice.point());
        for (int i = 0; i < 9; ++i) one.lineTo(dice.point());
        LiveMovie live(visFile(smallMovie(width, height, {shapeOf(10, one), frameOf({author::place(10, 0)})})));
        live.playFrames(1);
        auto& instance = static_cast<ShapeInstance&>(*live.movie().root.first);
        ASSERT_NE(instance.placed.table.onlyFill, StyleGroup::none);
        const Rect screen = screenRect(live.movie().render);
        const Drawing shorter = draw(live.movie(), instance, screen);
        instance.placed.table.onlyFill = StyleGroup::none;
        EXPECT_EQ(shorter.pixels, draw(live.movie(), instance, screen).pixels) << round;
    }
}

TEST(DrawShape, MovesAPlacedShapeAsIfItWerePlacedAnew) {
    Dice dice(29);
    for (int round = 0; round < 60; ++round) {
        LiveMovie live(anyShapeMovie(dice));
        live.playFrames(1);
        auto& instance = static_cast<ShapeInstance&>(*live.movie().root.first);
        const Matrix there =
            at(static_cast<std::int16_t>(dice.below(20) - 10), static_cast<std::int16_t>(dice.below(20) - 10));
        const auto bringThere = [&] {
            EXPECT_EQ(placeShape(instance.shape->geometry, there, PointRounding::nearest, live.movie().pool,
                                 instance.placed, instance.bounds),
                      Result::done);
            return draw(live.movie(), instance, screenRect(live.movie().render));
        };
        const Drawing moved = bringThere();
        const Rect bounds = instance.bounds;
        instance.placed.transformed = false;
        EXPECT_EQ(moved.pixels, bringThere().pixels);
        if (!isEmpty(bounds)) {
            EXPECT_EQ(bounds, instance.bounds);
        }
    }
}

TEST(DrawShape, RecoloursEveryStyleAndTakesItBack) {
    Dice dice(31);
    for (int round = 0; round < 40; ++round) {
        LiveMovie live(anyShapeMovie(dice));
        live.playFrames(1);
        Movie& movie = live.movie();
        auto& instance = static_cast<ShapeInstance&>(*movie.root.first);
        const auto recoloured = [&](const ColourTransform& colours) {
            EXPECT_EQ(recolourShape(instance.shape->geometry, colours, movie.pool, instance.placed), Result::done);
            return draw(movie, instance, screenRect(movie.render));
        };
        const Drawing before = draw(movie, instance, screenRect(movie.render));
        EXPECT_EQ(recoloured({.alphaMultiplier = 0}).pixels, Drawing().pixels) << "wholly transparent";
        const Drawing black = recoloured(
            {.redMultiplier = 0, .greenMultiplier = 0, .blueMultiplier = 0, .alphaMultiplier = 0, .alphaOffset = 255});
        for (const std::uint16_t pixel : black.pixels) ASSERT_TRUE(pixel == 0 || pixel == 0x6B4D) << "opaque black";
        EXPECT_EQ(recoloured({}).pixels, before.pixels);
    }
}

}  // namespace
}  // namespace qel::test
