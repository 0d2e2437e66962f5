// Gradients: ramps, sampling, the search for a radial index, and pictures.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "render/gradient_ramp.h"
#include "render/radial_index.h"
#include "support/shape_picture.h"

namespace qel::test {
namespace {

GradientRamp rampOf(std::initializer_list<GradientStop> stops) {
    GradientRamp ramp;
    buildRamp(std::span(stops.begin(), stops.size()), ramp);
    return ramp;
}

TEST(Ramps, GoFromStopToStopAndOnBehindTheEnds) {
    const GradientRamp ramp = rampOf({{.ratio = 40, .colour = red}, {.ratio = 200, .alpha = 55, .colour = blue}});
    for (const std::size_t i : {0, 39, 40}) EXPECT_EQ(ramp.colours[i], red) << i;
    for (const std::size_t i : {200, 201, 255}) EXPECT_EQ(ramp.colours[i], blue) << i;
    EXPECT_EQ(ramp.colours[120], (127 & 0xF8) << 8 | 127 >> 3) << "halfway, channels of 8 bits";
    EXPECT_EQ(ramp.alphas[39], 255);
    EXPECT_EQ(ramp.alphas[120], 155);
    EXPECT_EQ(ramp.alphas[255], 55);
}

TEST(Ramps, OfStopsAtOnePlaceTheEarlierHolds) {
    const GradientRamp ramp = rampOf({{.ratio = 0, .colour = red},
                                      {.ratio = 100, .colour = green},
                                      {.ratio = 100, .colour = blue},
                                      {.ratio = 255, .colour = white}});
    EXPECT_EQ(ramp.colours[100], green);
    EXPECT_EQ(ramp.colours[101], green) << "each entry moves on by one stop at most";
    EXPECT_EQ(ramp.colours[102] & 0x1F, 31) << "the second begins behind it";
    EXPECT_EQ(ramp.colours[255], white);
    EXPECT_EQ(rampOf({{.ratio = 77, .colour = green}}).colours[200], green) << "one stop alone";
    EXPECT_EQ(rampOf({}).alphas[10], 0) << "none is transparent";
}

// The device's search from a predicted index, step by step.
int searched(int predicted, std::uint32_t square) {
    int index = predicted;
    while (index > 0 && square < std::uint32_t(index * index)) --index;
    while (index < 255 && square > std::uint32_t((index + 1) * (index + 1))) ++index;
    return index;
}

TEST(RadialIndexes, AreThoseOfTheSearch) {
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round) {
        const auto any = [&](int range) { return static_cast<std::int32_t>(random() % unsigned(2 * range)) - range; };
        const int scale = round % 4 == 0 ? 600 * 65536 : 280 * 65536;
        SamplePoint at{any(scale), any(scale)};
        const std::int32_t stepU = round % 3 == 0 ? 65536 : any(3 * 65536), stepV = round % 3 == 0 ? 0 : any(3 * 65536);
        RadialWalk walk = beginRadialWalk(at, stepU, stepV);
        const auto count = static_cast<std::size_t>(1 + random() % longestRadialRun);
        int predicted = walk.predicted, previous = 0;
        std::uint8_t indexes[2 * longestRadialRun];
        takeRadialIndexes(walk, {indexes, count});
        takeRadialIndexes(walk, {indexes + count, count});
        for (std::size_t i = 0; i < 2 * count; ++i) {
            const std::int32_t u = at.u >> 16, v = at.v >> 16;
            const int wanted =
                searched(predicted, static_cast<std::uint32_t>(u * u) + static_cast<std::uint32_t>(v * v));
            ASSERT_EQ(indexes[i], wanted) << u << ',' << v << " pixel " << i;
            predicted = std::clamp(wanted + (i == 0 ? 0 : wanted - previous), 0, 255);
            previous = wanted;
            at.u = add32(at.u, stepU);
            at.v = add32(at.v, stepV);
        }
    }
}

TEST(RadialIndexes, BeginWithAnEstimateOfTheDistance) {
    struct Row {
        std::int32_t u, v, distance;
    };
    for (const Row& row : {Row{0, 0, 0}, Row{7, 0, 7}, Row{0, -7, 7}, Row{3, 4, 5}, Row{-100, 100, 141},
                           Row{300, 0, 255}, Row{-32768, 32767, 255}})
        EXPECT_EQ(estimateDistance({row.u * 65536, row.v * 65536}), row.distance) << row.u << ',' << row.v;
}

TEST(Sampling, LeadsFromThePixelBackToThePlane) {
    const Matrix fill{.a = 2 * fixedOne, .d = fixedOne / 2, .tx = 10, .ty = 20};
    const SamplingMatrix sampling = samplingMatrix(fill, {.a = fixedOne, .d = fixedOne, .tx = 5, .ty = 6});
    const SamplePoint origin = sampleAt(sampling, 15, 26), away = sampleAt(sampling, 17, 27);
    EXPECT_EQ(origin.u, 0);
    EXPECT_EQ(origin.v, 0);
    EXPECT_EQ(away.u, fixedOne);
    EXPECT_EQ(away.v, 2 * fixedOne);
    const SamplingMatrix flat = samplingMatrix({.a = 3, .tx = 1}, identityMatrix);
    EXPECT_EQ(flat.a, 0) << "a plane without area has the least determinant";
    EXPECT_EQ(flat.d, 3 << 16);
}

// A square of 6 x 3 pixels at (1, 0) whose fill is gradient 6 with red, green, blue in thirds.
Image painted(author::GradientType type, const Matrix& matrix, std::uint8_t lastAlpha = 255) {
    const std::vector<author::GradientStop> stops{{0, 0xFF0000},   {80, 0xFF0000},  {80, 0x00FF00},
                                                  {165, 0x00FF00}, {165, 0x0000FF}, {255, 0x0000FF, lastAlpha}};
    author::Outline box;
    box.style({.line = {}, .fill0 = 6, .fill1 = {}}).moveTo({1, 0}).lineTo({7, 0}).lineTo({7, 3}).lineTo({1, 3});
    box.lineTo({1, 0});
    const Bytes shape =
        author::shape({.id = 10, .bounds = {}, .outline = box, .bitmapFills = {}, .gradientFills = {6}});
    return firstFrame(8, 3, {author::gradientFill(6, type, matrix, stops), shape, frameOf({author::place(10, 0)})});
}

TEST(Gradients, RunAlongTheirMatrix) {
    const std::int32_t size = fixedOne * 6 / 256;
    EXPECT_EQ(picture(painted(author::GradientType::linear, {.a = size, .d = size, .tx = 4, .ty = 0})), R"(
.rrggbb.
.rrggbb.
.rrggbb.
)");
    EXPECT_EQ(picture(painted(author::GradientType::linear,
                              {.a = 0, .b = fixedOne * 3 / 256, .c = -fixedOne, .d = 0, .tx = 0, .ty = 1})),
              R"(
.rrrrrr.
.gggggg.
.bbbbbb.
)") << "a quarter turn";
    EXPECT_EQ(
        picture(painted(author::GradientType::radial, {.a = fixedOne / 64, .d = fixedOne / 64, .tx = 3, .ty = 1})),
        R"(
.ggrggb.
.grrrgb.
.ggrggb.
)");
}

TEST(Gradients, MixTheirTranslucentStopsWithWhatLiesBelow) {
    const std::int32_t size = fixedOne * 6 / 256;
    const Image image = painted(author::GradientType::linear, {.a = size, .d = size, .tx = 4, .ty = 0}, 0);
    EXPECT_EQ(image.at(1, 1), red);
    EXPECT_NE(image.at(5, 1), blue);
    EXPECT_LT(image.at(5, 1) >> 11, image.at(6, 1) >> 11) << "more and more of the white below";
}

TEST(Gradients, OfAnyMatrixAreDefined) {
    std::mt19937 random(5);
    const auto field = [&] { return static_cast<std::int32_t>(random()) >> (1 + random() % 30); };
    for (int round = 0; round < 60; ++round) {
        const Matrix matrix{field(),
                            field(),
                            field(),
                            field(),
                            static_cast<std::int16_t>(random()),
                            static_cast<std::int16_t>(random())};
        const auto type = round % 2 == 0 ? author::GradientType::linear : author::GradientType::radial;
        EXPECT_EQ(painted(type, matrix).pixels.size(), 24u);
    }
}

}  // namespace
}  // namespace qel::test
