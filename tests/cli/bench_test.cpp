#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "cli/command_line.h"
#include "cli/playback_meter.h"
#include "host/small_movies.h"

namespace qel::cli {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

// A machine on which nothing takes time but reading, 50 us a call, and presenting, 1 ms a frame.
class SlowPlatform : public HeadlessPlatform {
  public:
    bool readFile(FileHandle file, std::uint32_t offset, std::span<std::uint8_t> to) override {
        now += 50us;
        return HeadlessPlatform::readFile(file, offset, to);
    }
    bool present(const FrameRecord&, std::span<std::uint8_t>) override {
        now += 1ms;
        return true;
    }
    nanoseconds now{};
};

class MeterTest : public testing::Test {
  protected:
    Measurement measure(const test::SquareMovie& movie, std::uint64_t frames, bool loop = true) {
        platform.provideContent("movie", test::squareMovie(movie));
        return PlaybackMeter(platform, {.loop = loop}, [this] { return platform.now; }).measure("movie", frames);
    }
    SlowPlatform platform;
};

TEST_F(MeterTest, PutsTimesDownToTheWorkThatTookThem) {
    const Measurement measured = measure({}, 7);
    EXPECT_EQ(measured.end, Measurement::End::enoughFrames);
    EXPECT_EQ(measured.passes, 3u) << "three frames a pass";
    ASSERT_EQ(measured.frames.size(), 7u);
    nanoseconds all = measured.loading;
    for (const FrameCost& cost : measured.frames) {
        EXPECT_EQ(cost[PlayerWork::presenting], 1ms);
        EXPECT_EQ(cost[PlayerWork::drawing] + cost[PlayerWork::scripts], 0ms);
        EXPECT_EQ(cost.total() - cost[PlayerWork::presenting], cost[PlayerWork::reading] + cost[PlayerWork::loading]);
        all += cost.total();
    }
    EXPECT_EQ(measured.frames[0][PlayerWork::loading], 0ms) << "that of the first pass stands apart";
    EXPECT_GE(measured.loading, 100us) << "two reads at least: the first bytes, and what follows";
    EXPECT_EQ(all, platform.now) << "nothing is lost";
    EXPECT_GT(measured.budgetPeak, 0u);
}

TEST_F(MeterTest, IsNeverLateHoweverManyPiecesAFrameHas) {
    EXPECT_EQ(measure({.frameMs = 50}, 100, false).end, Measurement::End::playbackEnded);
    EXPECT_LT(platform.elapsedMs(), 151u) << "three frames of 50 ms: work took no virtual time";
    EXPECT_GT(platform.elapsedMs(), 120u);
}

TEST(Spread, TakesTheNearestRank) {
    std::vector<nanoseconds> durations;
    for (int i = 20; i >= 1; --i) durations.push_back(i * 1us);
    const Spread spread = spreadOf(durations);
    EXPECT_EQ(spread.minimum, 1);
    EXPECT_EQ(spread.median, 10);
    EXPECT_EQ(spread.percentile95, 19);
    EXPECT_EQ(spreadOf({1500ns}).percentile95, 1.5) << "one value is all three";
}

class BenchTest : public testing::Test {
  protected:
    BenchTest() {
        std::filesystem::create_directories(directory);
        author::Bytes movie = test::squareMovie();
        write("movie.vis", movie);
        movie.resize(movie.size() - 20);
        write("cut.vis", movie);
        write("text.vis", {'h', 'e', 'l', 'l', 'o'});
    }
    ~BenchTest() override { std::filesystem::remove_all(directory); }
    void write(const char* name, const author::Bytes& bytes) {
        std::ofstream(directory / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    int bench(std::vector<std::string> options, const std::string& file) {
        options.insert(options.begin(), {"qel", "bench"});
        options.push_back((directory / file).string());
        std::vector<const char*> words;
        for (const std::string& option : options) words.push_back(option.c_str());
        testing::internal::CaptureStdout();
        const int status = runCommandLine(static_cast<int>(words.size()), words.data());
        output = testing::internal::GetCapturedStdout();
        return status;
    }

    std::filesystem::path directory =
        std::filesystem::path(testing::TempDir()) /
        (std::string("qel-") + testing::UnitTest::GetInstance()->current_test_info()->name());
    std::string output;
};

TEST_F(BenchTest, SaysHowPlaybackEnded) {
    struct Row {
        std::vector<std::string> options;
        const char* file;
        int status;
        const char* end;  // null: no object
        int frames;
    };
    const Row rows[] = {
        {{"--json", "--frames", "5"}, "movie.vis", success, "max-frames", 5},
        {{"--json", "--once"}, "movie.vis", success, "finished", 3},
        {{"--json", "--frames", "7", "--loop", "--time-slice", "100"}, "movie.vis", success, "max-frames", 7},
        {{"--json"}, "cut.vis", failed, "aborted", 0},
        {{"--json", "--budget", "1200"}, "movie.vis", failed, "aborted", 0},
        {{"--json"}, "text.vis", refused, nullptr, 0},
        {{"--json"}, "missing.vis", badUsage, nullptr, 0},
        {{"--frames", "0"}, "movie.vis", badUsage, nullptr, 0},
        {{"--once", "--loop"}, "movie.vis", badUsage, nullptr, 0},
        {{"--date", "never"}, "movie.vis", badUsage, nullptr, 0},
    };
    for (const Row& row : rows) {
        const std::string name = testing::PrintToString(row.options) + " " + row.file;
        ASSERT_EQ(bench(row.options, row.file), row.status) << name;
        if (!row.end) {
            EXPECT_EQ(output.find('{'), output.npos) << name;
            continue;
        }
        const auto object = nlohmann::json::parse(output);
        EXPECT_EQ(object["end"], row.end) << name;
        EXPECT_EQ(object["frames"], row.frames) << name;
        for (const char* part : {"frame", "reading", "scripts", "drawing", "presenting", "other"}) {
            ASSERT_EQ(object.at(part).is_null(), row.frames == 0) << name << ": " << part;
            if (row.frames == 0) continue;
            EXPECT_LE(object[part]["minimum"], object[part]["percentile95"]) << name;
        }
    }
    ASSERT_EQ(bench({"--once"}, "movie.vis"), success);
    EXPECT_NE(output.find("frames: 3, passes: 1"), output.npos) << output;
    EXPECT_NE(output.find("The content ended. 300 frames were asked for."), output.npos) << output;
}

}  // namespace
}  // namespace qel::cli
