// The pages of examples/showcase.json as a person has seen them and found them right: the pictures in showcase/. A page
// that comes out otherwise is written beside the test's other files, to be looked at and, if it is right, kept.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/command_line.h"
#include "cli/png_file.h"

namespace qel::test {
namespace {

int runQel(std::initializer_list<std::string> words) {
    std::vector<const char*> arguments{"qel"};
    for (const std::string& word : words) arguments.push_back(word.c_str());
    return cli::runCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

TEST(Showcase, LooksAsItDid) {
    constexpr unsigned width = 240, height = 320, framesOfAPage = 40;
    const std::filesystem::path directory = std::filesystem::path(testing::TempDir()) / "qel-showcase";
    std::filesystem::create_directories(directory);
    const std::string root = QEL_SOURCE_DIR, movie = (directory / "showcase.vis").string();
    ASSERT_EQ(runQel({"build", root + "/examples/showcase.json", "-o", movie}), 0);
    unsigned frame = 1;
    for (const char* page : {"fills", "strokes", "curves", "gradients", "morphs", "picture"}) {
        const std::string drawn = (directory / (std::string(page) + ".png")).string();
        ASSERT_EQ(runQel({"render", movie, "-o", drawn, "--frame", std::to_string(frame)}), 0);
        frame += framesOfAPage;
        const std::vector<cli::Rgb> expected = readPng(root + "/tests/cli/showcase/" + page + ".png", width, height);
        ASSERT_FALSE(expected.empty()) << page;
        EXPECT_TRUE(readPng(drawn, width, height) == expected) << "look at " << drawn;
        if (!HasFailure()) std::filesystem::remove(drawn);
    }
    if (!HasFailure()) std::filesystem::remove_all(directory);
}

}  // namespace
}  // namespace qel::test
