#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/command_line.h"
#include "cli/option_values.h"
#include "cli/report_writer.h"
#include "host/small_movies.h"

namespace qel::cli {
namespace {

class RunTest : public testing::Test {
  protected:
    RunTest() {
        std::filesystem::create_directories(directory);
        write("movie.vis", test::squareMovie());
    }
    ~RunTest() override { std::filesystem::remove_all(directory); }

    std::string path(const std::string& name) const { return (directory / name).string(); }
    void write(const std::string& name, const author::Bytes& bytes) {
        std::ofstream(path(name), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    std::string read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // Runs with these options on movie.vis; leaves the report in `report`.
    int run(std::vector<std::string> options, const std::string& file = "movie.vis") {
        options.insert(options.begin(), {"qel", "run", "--events", path("report")});
        options.push_back(path(file));
        std::vector<const char*> words;
        for (const std::string& option : options) words.push_back(option.c_str());
        const int status = runCommandLine(static_cast<int>(words.size()), words.data());
        report = read("report");
        return status;
    }
    std::string lastLine() const { return report.substr(report.rfind('\n', report.size() - 2) + 1); }

    std::filesystem::path directory =
        std::filesystem::path(testing::TempDir()) /
        (std::string("qel-") + testing::UnitTest::GetInstance()->current_test_info()->name());
    std::string report;
};

TEST_F(RunTest, ReportsWhatTheHostSees) {
    EXPECT_EQ(run({}), success);
    EXPECT_EQ(
        report,
        R"({"time":20,"event":1,"argument":0,"kind":33,"version":22,"width":16,"height":12,"oldFormat":0,"paletteCount":1,"extra":65535,"option1":0,"option2":0,"palette":[]}
{"time":20,"event":5,"argument":0,"value":1}
{"time":20,"event":6,"argument":1,"value":0}
{"time":20,"event":3,"argument":0,"frame":1,"x":0,"y":0,"width":16,"height":12,"pitch":32,"crc32":"a16339ca"}
{"time":20,"event":6,"argument":1,"value":85}
{"time":60,"event":3,"argument":0,"frame":2,"x":0,"y":0,"width":16,"height":12,"pitch":32,"crc32":"3872a8e5"}
{"time":60,"event":6,"argument":1,"value":170}
{"time":100,"event":3,"argument":0,"frame":3,"x":0,"y":0,"width":16,"height":12,"pitch":32,"crc32":"d5166025"}
{"time":100,"event":6,"argument":1,"value":255}
{"time":150,"event":8,"argument":1,"text":null}
{"time":150,"end":"finished"}
)");
}

TEST_F(RunTest, EndsAsItsOptionsSay) {
    write("cut.vis", [] {
        author::Bytes bytes = test::squareMovie();
        bytes.resize(bytes.size() - 20);
        return bytes;
    }());
    write("text.vis", {'h', 'e', 'l', 'l', 'o'});
    struct Row {
        std::vector<std::string> options;
        const char* file;
        int status;
        const char* last;
    };
    const Row rows[] = {
        {{"--max-frames", "2"}, "movie.vis", success, "{\"time\":60,\"end\":\"max-frames\"}\n"},
        {{"--max-time", "70"}, "movie.vis", success, "{\"time\":70,\"end\":\"max-time\"}\n"},
        {{"--max-time", "0"}, "movie.vis", success, "{\"time\":0,\"end\":\"max-time\"}\n"},
        {{"--loop", "--max-frames", "9"}, "movie.vis", success, "\"end\":\"max-frames\"}\n"},
        {{"--key", "50:cancel"}, "movie.vis", success, "{\"time\":60,\"end\":\"finished\"}\n"},
        {{"--loop", "--stop-at", "70"}, "movie.vis", success, "\"end\":\"finished\"}\n"},
        {{"--fault", "open"}, "movie.vis", failed, "{\"time\":20,\"end\":\"aborted\"}\n"},
        {{"--fault", "read:2"}, "movie.vis", failed, "{\"time\":20,\"end\":\"aborted\"}\n"},
        {{"--fault", "read:1"}, "movie.vis", refused, "{\"time\":0,\"end\":\"refused\"}\n"},
        {{"--fault", "alloc-from:1", "--fault", "open"}, "movie.vis", refused, "{\"time\":0,\"end\":\"refused\"}\n"},
        {{}, "cut.vis", failed, "\"end\":\"aborted\"}\n"},
        {{}, "text.vis", refused, "{\"time\":0,\"end\":\"refused\"}\n"},
    };
    for (const Row& row : rows) {
        const std::string name = testing::PrintToString(row.options) + " " + row.file;
        EXPECT_EQ(run(row.options, row.file), row.status) << name;
        EXPECT_TRUE(lastLine().ends_with(row.last)) << name << ": " << lastLine();
    }
}

TEST_F(RunTest, RejectsBadUsage) {
    const std::vector<std::string> rows[] = {
        {"--key", "5"},       {"--key", "5:256"},        {"--key", ":5"},          {"--key", "5:Select"},
        {"--key", "5:"},      {"--key", "5:number5"},    {"--fault", "read:0"},    {"--fault", "full"},
        {"--tick-cost", "0"}, {"--max-frames", "0"},     {"--date", "2001-02-29"}, {"--format", "gif"},
        {"--budget", "-1"},   {"--frames", "/dev/null"},
    };
    for (const auto& options : rows) EXPECT_EQ(run(options), badUsage) << testing::PrintToString(options);
    EXPECT_EQ(run({}, "missing.vis"), badUsage);
}

TEST_F(RunTest, WritesEveryFrame) {
    ASSERT_EQ(run({"--frames", path("frames"), "--format", "rgb565"}), success);
    ASSERT_EQ(run({"--frames", path("frames")}), success);
    const std::string second = read("frames/frame-000002.rgb565");
    ASSERT_EQ(second.size(), 16u * 12 * 2);
    const auto word = [&second](std::size_t x, std::size_t y) { return second.substr((y * 16 + x) * 2, 2); };
    EXPECT_EQ(word(3, 2), "\xFF\xFF") << "white left of the square";
    EXPECT_EQ(word(4, 2), std::string("\x00\xF8", 2)) << "red, little-endian";
    EXPECT_TRUE(std::filesystem::exists(path("frames/frame-000003.png")));
    EXPECT_FALSE(std::filesystem::exists(path("frames/frame-000004.png")));
}

TEST_F(RunTest, ReportsServiceCallsInOrder) {
    ASSERT_EQ(run({"--services", "--max-frames", "1"}), success);
    EXPECT_TRUE(
        report.starts_with("{\"time\":0,\"service\":\"read\",\"offset\":0,\"count\":24,\"result\":1}\n"
                           "{\"time\":0,\"service\":\"armTimer\",\"interval\":1,\"milliseconds\":20}\n"
                           "{\"time\":20,\"service\":\"read\""))
        << report;
    const std::string once = report;
    ASSERT_EQ(run({"--services", "--max-frames", "1"}), success);
    EXPECT_EQ(report, once) << "every run is the same";
}

TEST_F(RunTest, PlaysExpandedContentFromItsTemporaryFile) {
    write("movie.zvis", author::zvisFile(test::squareMovie()));
    ASSERT_EQ(run({}), success);
    const std::string frames = report.substr(report.find("\"event\":3"));
    ASSERT_EQ(run({}, "movie.zvis"), success);
    EXPECT_EQ(report.substr(report.find("\"event\":3")), frames);

    ASSERT_EQ(run({"--services"}, "movie.zvis"), success);
    const std::size_t created = report.find("\"service\":\"createTemp\",\"length\":148,\"result\":1}");
    const std::size_t written = report.find("\"service\":\"writeTemp\",\"count\":148}");
    const std::size_t switched = report.find("\"service\":\"switchToTemp\"}");
    EXPECT_LT(created, written);
    EXPECT_LT(written, switched);
    EXPECT_NE(switched, std::string::npos);

    EXPECT_EQ(run({"--fault", "temp"}, "movie.zvis"), failed);
    EXPECT_NE(report.find("\"event\":9,\"argument\":4,\"value\":0}"), std::string::npos);
}

TEST(ReportWriter, WritesCallsAndTextsByteForByte) {
    const char* const keys[] = {"a\"b", "\xE9"};
    const char* const values[] = {"1\n", ""};
    const std::uint8_t sound[5] = {};
    const std::pair<ServiceCall, const char*> rows[] = {
        {calls::CreateTemporary{.length = 9, .result = false}, R"("createTemp","length":9,"result":0)"},
        {calls::WriteTemporary{.count = 3}, R"("writeTemp","count":3)"},
        {calls::SwitchToTemporary{}, R"("switchToTemp")"},
        {calls::CancelTimer{}, R"("cancelTimer")"},
        {calls::Vibrate{.milliseconds = 200}, R"("vibrate","milliseconds":200)"},
        {calls::StartSound{
             {.channel = SoundChannel::second, .id = 7, .format = 3, .loops = 2, .volume = 255, .data = sound}},
         R"("soundStart","channel":2,"id":7,"format":3,"length":5,"loops":2,"volume":255)"},
        {calls::StopSound{SoundChannel::first, -1}, R"("soundStop","channel":1,"id":-1)"},
        {calls::PauseSound{SoundChannel::first}, R"("soundPause","channel":1)"},
        {calls::ResumeSound{SoundChannel::first}, R"("soundResume","channel":1)"},
        {calls::SetSoundVolume{SoundChannel::second, 0}, R"("soundVolume","channel":2,"volume":0)"},
        {calls::LoadRegistry{nullptr}, R"("registryLoad","name":null)"},
        {calls::DeleteRegistry{"x"}, R"("registryDelete","name":"x")"},
        {calls::SaveRegistry{"\x80", keys, values, true},
         "\"registrySave\",\"name\":\"\xC2\x80\",\"keys\":[\"a\\\"b\",\"\xC3\xA9\"],\"values\":[\"1\\n\",\"\"],"
         "\"flag\":1"},
        {calls::Log{u"\u20AC\xD800"}, "\"log\",\"text\":\"\xE2\x82\xAC\xEF\xBF\xBD\""},
    };
    HeadlessPlatform platform;
    for (const auto& [call, fields] : rows) {
        std::ostringstream out;
        ReportWriter(out, platform, true).serviceCalled(call);
        EXPECT_EQ(out.str(), "{\"time\":0,\"service\":" + std::string(fields) + "}\n");
    }
    std::ostringstream out;
    ReportWriter writer(out, platform, true);
    writer.serviceCalled(calls::TickCount{});
    writer.serviceCalled(calls::Allocate{});
    EXPECT_EQ(out.str(), "") << "not reported";

    writer.eventRaised({HostEvent::finished, 2, reinterpret_cast<std::uintptr_t>("http://\xFC/")});
    writer.eventRaised({HostEvent::streamStatus, 5, 77});
    ContentInfo info{.kind = ContentKind::paletteMovie, .paletteCount = 200};
    info.palette[10] = 65535;
    writer.eventRaised({HostEvent::contentOpened, 0, reinterpret_cast<std::uintptr_t>(&info)});
    EXPECT_NE(out.str().find("\"argument\":2,\"text\":\"http://\xC3\xBC/\"}"), std::string::npos);
    EXPECT_NE(out.str().find("\"event\":7,\"argument\":5,\"value\":77}"), std::string::npos);
    EXPECT_NE(out.str().find("\"palette\":[0,0,0,0,0,0,0,0,0,0,65535]}"), std::string::npos);
}

TEST(OptionValues, ReadsKeysByCodeAndByName) {
    const std::pair<const char*, std::uint32_t> rows[] = {{"5", 5},          {"155", 155}, {"select", 155},
                                                          {"number-5", 133}, {"up", 150},  {"end", 147},
                                                          {"ok", 153},       {"0", 0},     {"reserved-9", 169}};
    for (const auto& [key, code] : rows) {
        const std::optional<KeyPress> press = parseKey("70:" + std::string(key));
        ASSERT_TRUE(press) << key;
        EXPECT_EQ(press->atMs, 70u);
        EXPECT_EQ(press->code, code) << key;
    }
}

TEST(OptionValues, ReadsDates) {
    EXPECT_EQ(parseDate("1970-01-01"), 0);
    EXPECT_EQ(parseDate("2000-02-29T12:34:56"), 951827696000);
    EXPECT_EQ(parseDate("1969-12-31T23:59:59.999"), -1);
    for (const char* text :
         {"", "2000", "2000-1-1", "0000-01-01", "2000-13-01", "2000-01-01T24:00:00", "2000-01-01T1:00:00",
          "2000-01-01T00:00:00.0", "2000-01-01T00:00:00.0000", "2000-01-01 00:00:00", "-200-01-01"})
        EXPECT_FALSE(parseDate(text)) << text;
}

}  // namespace
}  // namespace qel::cli
