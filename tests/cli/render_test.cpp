#include <gif_lib.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "cli/command_line.h"
#include "cli/gif_writer.h"
#include "cli/picture.h"
#include "cli/png_file.h"
#include "host/small_movies.h"

namespace qel::cli {
namespace {

using test::readPng;
using test::squareSize;

class RenderTest : public testing::Test {
  protected:
    RenderTest() { std::filesystem::create_directories(directory); }
    ~RenderTest() override { std::filesystem::remove_all(directory); }
    std::string path(const std::string& name) const { return (directory / name).string(); }

    int render(const author::Bytes& movie, const std::string& output, std::vector<std::string> options = {}) {
        std::ofstream(path("movie.vis"), std::ios::binary)
            .write(reinterpret_cast<const char*>(movie.data()), static_cast<std::streamsize>(movie.size()));
        const std::string file = path("movie.vis"), to = path(output);
        std::vector<const char*> words = {"qel", "render", file.c_str(), "-o", to.c_str()};
        for (const std::string& option : options) words.push_back(option.c_str());
        return runCommandLine(static_cast<int>(words.size()), words.data());
    }

    std::filesystem::path directory =
        std::filesystem::path(testing::TempDir()) /
        (std::string("qel-") + testing::UnitTest::GetInstance()->current_test_info()->name());
};

struct GifFrame {
    int delay = 0;
    std::vector<Rgb> pixels;
};
std::vector<GifFrame> readGif(const std::string& path) {
    GifFileType* const file = DGifOpenFileName(path.c_str(), nullptr);
    if (!file) return {};
    std::vector<GifFrame> frames;
    if (DGifSlurp(file) == GIF_OK) {
        for (int at = 0; at < file->ImageCount; ++at) {
            GraphicsControlBlock control = {};
            DGifSavedExtensionToGCB(file, at, &control);
            GifFrame frame{.delay = control.DelayTime, .pixels = {}};
            const SavedImage& image = file->SavedImages[at];
            for (int i = 0; i < image.ImageDesc.Width * image.ImageDesc.Height; ++i) {
                const GifColorType& colour = image.ImageDesc.ColorMap->Colors[image.RasterBits[i]];
                frame.pixels.push_back({colour.Red, colour.Green, colour.Blue});
            }
            frames.push_back(frame);
        }
    }
    DGifCloseFile(file, nullptr);
    return frames;
}

constexpr Rgb red = {255, 0, 0}, white = {255, 255, 255};

TEST_F(RenderTest, WritesOneFrame) {
    ASSERT_EQ(render(test::squareMovie(), "last.png"), success);
    const std::vector<Rgb> last = readPng(path("last.png"), 16, 12);
    ASSERT_EQ(last.size(), 16u * 12);
    EXPECT_EQ(last[4 * 16 + 8], red);
    EXPECT_EQ(last[4 * 16 + 7], white);
    ASSERT_EQ(render(test::squareMovie(), "first.png", {"--frame", "1"}), success);
    EXPECT_EQ(readPng(path("first.png"), 16, 12)[0], red);
}

TEST_F(RenderTest, WritesAnAnimationWithTheTimesOfTheRun) {
    ASSERT_EQ(render(test::squareMovie({.positions = {{0, 0}, {1, 0}, {2, 0}, {3, 0}}, .frameMs = 33}), "all.gif"),
              success);
    const std::vector<GifFrame> frames = readGif(path("all.gif"));
    ASSERT_EQ(frames.size(), 4u);
    int total = 0;
    for (std::size_t at = 0; at < frames.size(); ++at) {
        EXPECT_EQ(frames[at].pixels[at], red);
        EXPECT_EQ(frames[at].pixels[at + squareSize], white);
        total += frames[at].delay;
    }
    // Three times 23 ms, as each frame may come 10 ms early, and the last one's 33 ms.
    EXPECT_EQ(total, 10);
    ASSERT_EQ(render(test::squareMovie(), "two.gif", {"--max-frames", "2"}), success);
    EXPECT_EQ(readGif(path("two.gif")).size(), 2u);
    EXPECT_EQ(readGif(path("two.gif"))[1].delay, 4) << "until the frame that is left out";
}

TEST_F(RenderTest, SaysWhatItCannotDoAndLeavesNoFile) {
    const author::Bytes movie = test::squareMovie();
    author::Bytes cut = movie;
    cut.resize(cut.size() - 20);
    struct Row {
        const author::Bytes& movie;
        const char* output;
        std::vector<std::string> options;
        int status;
    };
    const Row rows[] = {
        {movie, "a.png", {"--frame", "4"}, failed},
        {movie, "a.gif", {"--frame", "1"}, badUsage},
        {movie, "a.bmp", {}, badUsage},
        {movie, "no/a.gif", {}, badUsage},
        {movie, "no/a.png", {}, badUsage},
        {cut, "a.gif", {}, failed},
        {cut, "a.png", {}, failed},
        {{1, 2, 3}, "a.gif", {}, refused},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(render(row.movie, row.output, row.options), row.status) << row.output;
        EXPECT_FALSE(std::filesystem::exists(path(row.output))) << row.output;
    }
}

TEST(GifClock, CarriesWhatRoundingTakes) {
    GifClock clock(4);
    std::uint64_t total = 0;
    for (std::uint64_t ms = 37; ms <= 4 + 33 * 100; ms += 33) total += clock.delayUntil(ms);
    EXPECT_EQ(total, 330u);
    EXPECT_EQ(clock.delayUntil(0), 0u) << "time does not run backwards";
}

TEST(GifWriter, RepeatsAPictureThatIsShownLongerThanOneDelayCanSay) {
    const std::string path = testing::TempDir() + "/long.gif";
    GifWriter writer;
    ASSERT_TRUE(writer.open(path));
    ASSERT_TRUE(writer.add({.width = 1, .height = 1, .pixels = {0xF800}}, 0));
    EXPECT_TRUE(writer.add({.width = 1, .height = 1, .pixels = {0xFFFF}}, 700000));
    EXPECT_TRUE(writer.add({.width = 1, .height = 1, .pixels = {0x0000}}, 700002)) << "the white one is never seen";
    EXPECT_TRUE(writer.finish(700000));
    const std::vector<GifFrame> frames = readGif(path);
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0].delay + frames[1].delay, 70000);
    EXPECT_EQ(frames[2].pixels[0], Rgb{});
    std::filesystem::remove(path);
}

TEST(ReduceColours, IsExactUpTo256AndCloseBeyond) {
    Picture picture{.width = 16, .height = 16, .pixels = {}};
    for (unsigned at = 0; at < 256; ++at) picture.pixels.push_back(static_cast<std::uint16_t>(at * 257));
    IndexedPicture exact = reduceColours(picture);
    for (std::size_t at = 0; at < 256; ++at)
        EXPECT_EQ(exact.palette[exact.indexes[at]], rgbFrom565(picture.pixels[at]));

    Picture smooth{.width = 64, .height = 64, .pixels = {}};
    for (unsigned y = 0; y < 64; ++y)
        for (unsigned x = 0; x < 64; ++x) smooth.pixels.push_back(static_cast<std::uint16_t>((x / 2) << 11 | y << 5));
    const IndexedPicture close = reduceColours(smooth);
    EXPECT_EQ(close.palette.size(), 256u);
    for (std::size_t at = 0; at < smooth.pixels.size(); ++at) {
        const Rgb is = close.palette[close.indexes[at]], was = rgbFrom565(smooth.pixels[at]);
        EXPECT_LE(std::abs(is.red - was.red), 16);
        EXPECT_LE(std::abs(is.green - was.green), 16);
        EXPECT_EQ(is.blue, 0);
    }
}

TEST(RgbFrom565, RepeatsTheHighBitsBelow) {
    EXPECT_EQ(rgbFrom565(0xFFFF), white);
    EXPECT_EQ(rgbFrom565(0x8410), (Rgb{132, 130, 132}));  // 10000, 100000, 10000
    EXPECT_EQ(rgbFrom565(0x0821), (Rgb{8, 4, 8}));
}

TEST_F(RenderTest, PressesKeysOnTheWay) {
    EXPECT_EQ(render(test::squareMovie(), "third.png", {"--frame", "3"}), success);
    EXPECT_EQ(render(test::squareMovie(), "third.png", {"--frame", "3", "--key", "50:cancel"}), failed)
        << "cancel ends the movie after its second frame";
}

}  // namespace
}  // namespace qel::cli
