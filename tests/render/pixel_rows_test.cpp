// Blending many pixels at a time gives what blending one does.
#include "render/pixel_rows.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "render/blend.h"

namespace qel::test {
namespace {

std::uint16_t expected(std::uint16_t below, std::uint16_t source, std::uint8_t alpha) {
    return alpha == 255 ? source : blend565(below, source, alpha);
}

TEST(PixelRows, BlendOneColourOverEveryPixelThereIs) {
    std::vector<std::uint16_t> all(65536), run;
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint16_t>(i);
    for (const std::uint16_t colour : std::initializer_list<std::uint16_t>{0x0000, 0xFFFF, 0x1234, 0xF81F, 0xABCD})
        for (const std::uint8_t alpha : std::initializer_list<std::uint8_t>{0, 1, 2, 100, 127, 128, 254, 255}) {
            run = all;
            blendColour(run, colour, alpha);
            std::size_t wrong = 0;
            for (std::size_t i = 0; i < all.size(); ++i) wrong += run[i] != expected(all[i], colour, alpha);
            EXPECT_EQ(wrong, 0u) << colour << " at " << int{alpha};
        }
}

TEST(PixelRows, BlendRunsOfEveryLengthAndTouchNothingElse) {
    std::mt19937 random(7);
    for (std::size_t length = 0; length < 70; ++length)
        for (int round = 0; round < 20; ++round) {
            std::vector<std::uint16_t> row(length + 2), colours(length);
            std::vector<std::uint8_t> alphas(length);
            for (std::uint16_t& pixel : row) pixel = static_cast<std::uint16_t>(random());
            for (std::uint16_t& colour : colours) colour = static_cast<std::uint16_t>(random());
            for (std::uint8_t& alpha : alphas) alpha = static_cast<std::uint8_t>(round % 3 == 0 ? 255 : random());
            std::vector<std::uint16_t> wanted = row;
            for (std::size_t i = 0; i < length; ++i) wanted[i + 1] = expected(row[i + 1], colours[i], alphas[i]);
            blendColours({row.data() + 1, length}, colours.data(), alphas.data());
            ASSERT_EQ(row, wanted) << length;
        }
}

}  // namespace
}  // namespace qel::test
