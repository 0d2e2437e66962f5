#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "author/inspect.h"
#include "cli/command_line.h"
#include "format/colour_formats.h"
#include "support/playback.h"

namespace qel::cli {
namespace {

using author::Bytes;
namespace files = std::filesystem;

const files::path home = QEL_SOURCE_DIR;

// A directory of its own for each test.
struct BuildCommand : testing::Test {
    files::path place = files::temp_directory_path() / (std::string("qel_build_test_") +
                                                        testing::UnitTest::GetInstance()->current_test_info()->name());
    BuildCommand() {
        files::remove_all(place);
        files::create_directory(place);
    }
    ~BuildCommand() override { files::remove_all(place); }

    std::string source(const std::string& text) const {
        std::ofstream(place / "movie.json", std::ios::binary) << text;
        return (place / "movie.json").string();
    }
    std::string output(const char* name) const { return (place / name).string(); }
};

std::string textOf(const files::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Bytes bytesOf(const files::path& path) {
    const std::string text = textOf(path);
    return {text.begin(), text.end()};
}

struct Outcome {
    int status;
    std::string errors;
};

Outcome build(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"qel", "build"});
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(static_cast<int>(pointers.size()), pointers.data());
    testing::internal::GetCapturedStdout();
    return {status, testing::internal::GetCapturedStderr()};
}

// The first text between ```json and ``` on a page.
std::string exampleOn(const files::path& page) {
    const std::string text = textOf(page), fence = "```json\n";
    const std::size_t begin = text.find(fence);
    if (begin == std::string::npos) return "";
    return text.substr(begin + fence.size(), text.find("```", begin + fence.size()) - begin - fence.size());
}

TEST_F(BuildCommand, TakesTheListingThatInfoPrints) {
    const std::string listing = "again:\n    Push 'i' 1.5\n    If again\n    Stop\n";
    std::ofstream(place / "game.actions", std::ios::binary) << listing;
    const std::string path = output("movie.vis");
    ASSERT_EQ(
        build({source(R"({"stage": [8, 8], "frames": [{"actions": {"file": "game.actions"}}]})"), "-o", path}).errors,
        "");
    const author::Inspection inspection = author::inspectContent(bytesOf(path), {.actions = true});
    EXPECT_NE(author::inspectionText(inspection, "movie").find("    Push 'i' 1.5\n"), std::string::npos);
    EXPECT_NE(author::inspectionJson(inspection, "movie").find(R"("code":["label1:","    Push 'i' 1.5",)"),
              std::string::npos);
    EXPECT_EQ(author::inspectionText(author::inspectContent(bytesOf(path)), "movie").find("Push"), std::string::npos);
    std::ofstream(place / "game.actions", std::ios::binary) << "Stop\nHalt";
    EXPECT_NE(
        build({(place / "movie.json").string(), "-o", path}).errors.find("game.actions:2: there is no action \"Halt\""),
        std::string::npos);
}

TEST_F(BuildCommand, MakesAMovieThatShowsWhatItsSourceSays) {
    const std::string path = source(R"({"stage": [8, 6], "background": "#ffffff", "characters": {
        "dot": {"shape": [{"path": "M 0 0 h 2 v 3 h -2 Z", "fill": "#ff0000"}]}},
        "frames": [{"place": {"d": {"character": "dot", "x": 1, "y": 1}}}, {"move": {"d": {"x": 5}}}]})");
    for (const char* name : {"movie.vis", "movie.zvis"}) {
        ASSERT_EQ(build({path, "-o", output(name)}).status, success);
        const test::Playback playback = test::play(bytesOf(output(name)));
        EXPECT_TRUE(playback.finished()) << name;
        ASSERT_EQ(playback.frames.size(), 2u) << name;
        const std::vector<std::pair<std::uint16_t, char>> letters{{0xF800, '#'}, {0xFFFF, '.'}};
        EXPECT_EQ(test::sketch(playback.frames[1], letters),
                  "........\n.....##.\n.....##.\n.....##.\n........\n........\n")
            << name;
    }
    EXPECT_EQ(textOf(output("movie.zvis")).substr(0, 4), "ZVIS");
    ASSERT_EQ(build({path, "--zvis", "-o", output("plain")}).status, success);
    EXPECT_EQ(bytesOf(output("plain")), bytesOf(output("movie.zvis")));
}

TEST_F(BuildCommand, BuildsWhatTheProjectShows) {
    const struct {
        const char* name;
        std::string text;
        std::size_t frames;
    } cases[] = {{"the page about sources", exampleOn(home / "docs/movie-source.md"), 100},
                 {"hello.json", textOf(home / "examples/hello.json"), 50},
                 {"demo.json", textOf(home / "examples/demo.json"), 300}};
    for (const auto& each : cases) {
        const Outcome outcome = build({source(each.text), "-o", output("movie.vis")});
        ASSERT_EQ(outcome.status, success) << each.name << outcome.errors;
        const test::Playback playback = test::play(bytesOf(output("movie.vis")));
        EXPECT_TRUE(playback.finished()) << each.name;
        ASSERT_EQ(playback.frames.size(), each.frames) << each.name;
        EXPECT_NE(playback.frames[0], playback.frames[each.frames / 2]) << each.name;
    }
}

// Down, select: the second page; menu: back again; end: over. A stopped movie goes on for ever without it.
TEST_F(BuildCommand, BuildsAMenuThatKeysMoveThrough) {
    const std::string path = (home / "examples/menu.json").string();
    ASSERT_EQ(build({path, "-o", output("menu.vis")}).status, success);
    constexpr std::uint8_t end = 147, down = 151, menu = 152, select = 155;
    test::PlayOptions options;
    options.schedule.keys = {{300, down}, {600, select}, {1200, menu}, {1800, end}};
    const test::Playback playback = test::play(bytesOf(output("menu.vis")), options);
    EXPECT_TRUE(playback.finished());
    const auto cornerAt = [&playback](std::uint64_t ms) {  // of the picture that is seen then
        std::uint16_t colour = 0;
        for (std::size_t i = 0; i < playback.frames.size() && playback.frameTimesMs[i] <= ms; ++i)
            colour = playback.frames[i].at(2, 2);
        return colour;
    };
    constexpr std::uint16_t sky = rgb565From24(0x101C38), water = rgb565From24(0xA8D8E0);
    EXPECT_EQ(cornerAt(550), sky);
    EXPECT_EQ(cornerAt(1150), water);
    EXPECT_EQ(cornerAt(1750), sky);
    EXPECT_LT(playback.frameTimesMs.back(), 2000u);
}

TEST_F(BuildCommand, TakesDataFromFilesBesideTheSource) {
    std::ofstream(place / "beep.raw", std::ios::binary) << "beep beep";
    const char* const sounds[] = {R"({"file": "beep.raw"})", R"("62656570 2062656570")"};
    Bytes movies[2];
    for (std::size_t i = 0; i < 2; ++i) {
        const std::string path = source(R"({"stage": [8, 6], "frames": [{}], "characters": {"x": {"sound": )" +
                                        std::string(sounds[i]) + "}}}");
        ASSERT_EQ(build({path, "-o", output("movie.vis")}).status, success);
        movies[i] = bytesOf(output("movie.vis"));
    }
    EXPECT_EQ(movies[0], movies[1]);
    const std::string path = source(R"({"stage": [8, 6], "frames": [{}], "characters": {
        "x": {"sound": {"file": "."}}}})");
    const Outcome outcome = build({path, "-o", output("movie.vis")});
    EXPECT_EQ(outcome.status, failed);
    EXPECT_EQ(outcome.errors, path + ":2: characters/x/sound/file: \".\" cannot be read\n");
}

TEST_F(BuildCommand, NamesFileLineAndFieldOfAMistake) {
    const std::string path = source("{ \"stage\": [8, 6],\n  \"frames\": [ {},\n    { \"hold\": 0 } ] }\n");
    const Outcome outcome = build({path, "-o", output("movie.vis")});
    EXPECT_EQ(outcome.status, failed);
    EXPECT_EQ(outcome.errors, path + ":3: frames/1/hold: a whole number from 1 to 65535 belongs here\n");
    EXPECT_FALSE(files::exists(output("movie.vis")));
}

TEST_F(BuildCommand, TellsFilesThatCannotBeHadFromBrokenSources) {
    const std::string good = source(R"({"stage": [8, 6], "frames": [{}]})");
    const std::vector<std::string> cases[] = {{output("missing.json"), "-o", output("movie.vis")},
                                              {place.string(), "-o", output("movie.vis")},
                                              {good, "-o", output("missing/movie.vis")},
                                              {good}};
    for (const auto& arguments : cases) {
        const Outcome outcome = build(arguments);
        EXPECT_EQ(outcome.status, badUsage) << arguments[0];
        EXPECT_NE(outcome.errors, "") << arguments[0];
    }
}

}  // namespace
}  // namespace qel::cli
