#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "cli/command_line.h"

namespace qel::cli {
namespace {

// A whole "SAF" file without pictures.
const std::string smallFile("SAF\0\1\0\x1A\7\0\x0D\1\6\x10\x10\x08\0\0\0\3\3\0\0\0\x08\0\0", 26);

struct Outcome {
    int status;
    std::string out, err;
};

Outcome runInfo(const std::string& path, std::vector<const char*> options = {}) {
    std::vector<const char*> arguments{"qel", "info", path.c_str()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(static_cast<int>(arguments.size()), arguments.data());
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

// A file of the test's own: tests run side by side.
std::string fileWith(const std::string& bytes) {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    const auto path = std::filesystem::path(testing::TempDir()) / ("qel-" + test + std::to_string(bytes.size()));
    std::ofstream(path, std::ios::binary) << bytes;
    return path.string();
}

TEST(InfoCommand, AnswersByItsExitStatus) {
    const std::string whole = fileWith(smallFile), broken = fileWith(smallFile.substr(0, 20)), stream = fileWith("MSF");
    EXPECT_EQ(runInfo(whole).status, success);
    EXPECT_EQ(runInfo(broken).status, failed);
    for (const std::string& path : {stream, std::string("/nowhere/at/all"), std::string("/")}) {
        const Outcome outcome = runInfo(path);
        EXPECT_EQ(outcome.status, badUsage) << path;
        EXPECT_EQ(outcome.out, "") << path;
        EXPECT_NE(outcome.err.find(path), std::string::npos) << path;
    }
    for (const std::string& path : {whole, broken, stream}) std::filesystem::remove(path);
}

TEST(InfoCommand, PrintsATableOrJson) {
    const std::string path = fileWith(smallFile);
    EXPECT_NE(runInfo(path).out.find("no problems"), std::string::npos);
    EXPECT_EQ(runInfo(path, {"--json"}).out.find("{\"file\":\"" + path + "\",\"kind\":\"SAF\""), 0u);
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace qel::cli
