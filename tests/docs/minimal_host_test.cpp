// The host that docs/embedding.md shows, as a program that links the engine alone.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/small_movie.h"

namespace qel::test {
namespace {

namespace fs = std::filesystem;

class MinimalHost : public testing::Test {
  protected:
    fs::path folder = fs::path(testing::TempDir()) /
                      ("minimal_host_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));

    void SetUp() override { fs::create_directories(folder); }
    void TearDown() override { fs::remove_all(folder); }

    // Plays `frames` frames of the content; the exit status is 0 when a picture was written.
    bool play(const Bytes& content, int frames) const {
        std::ofstream(folder / "movie.vis", std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
        const std::string command = std::string(QEL_MINIMAL_HOST) + " " + (folder / "movie.vis").string() + " " +
                                    std::to_string(frames) + " " + (folder / "out.ppm").string() + " >" +
                                    (folder / "log").string() + " 2>&1";
        return std::system(command.c_str()) == 0;
    }

    std::string picture() const {
        std::ifstream file(folder / "out.ppm", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

// A red pixel that goes one to the right in the second frame.
MovieFile wanderingPixel() {
    return smallMovie(3, 1,
                      {rectangle(9, 1, 1, 1), frameOf({author::place(9, 0)}), frameOf({author::move(0, at(1, 0))})});
}

TEST_F(MinimalHost, WritesTheFrameAskedFor) {
    const std::string head = "P6\n3 1\n255\n", white = "\xFF\xFF\xFF", red{"\xFF\0\0", 3};
    const Bytes plain = author::visFile(wanderingPixel()), compressed = author::zvisFile(plain);
    ASSERT_TRUE(play(plain, 1));
    EXPECT_EQ(picture(), head + red + white + white);
    ASSERT_TRUE(play(plain, 2));
    EXPECT_EQ(picture().substr(head.size() + 3, 3), red);
    ASSERT_TRUE(play(compressed, 1));
    EXPECT_EQ(picture(), head + red + white + white);
}

TEST_F(MinimalHost, FailsWithoutAPictureWhenTheContentIsBroken) {
    Bytes cut = author::visFile(wanderingPixel());
    cut.resize(cut.size() / 2);
    EXPECT_FALSE(play(cut, 1));
    EXPECT_FALSE(play({}, 1));
    EXPECT_FALSE(fs::exists(folder / "out.ppm"));
}

}  // namespace
}  // namespace qel::test
