#include <gtest/gtest.h>

#include <filesystem>

#include "host/files.h"
#include "host/headless_run.h"
#include "host/small_movies.h"

namespace qel {
namespace {

TEST(VirtualClock, MovesOnlyWhenTheTickCountIsReadOrItJumps) {
    HeadlessPlatform platform(
        {.tick = 0xFFFFFFFF, .tickCostUs = 600, .startMs = 951782399500});  // 2000-02-28T23:59:59.500
    EXPECT_EQ(platform.timeOfDay().millisecond, 500);
    EXPECT_EQ(platform.tickCount(), 0xFFFFFFFFu);
    EXPECT_EQ(platform.tickCount(), 0xFFFFFFFFu) << "600 us later";
    EXPECT_EQ(platform.tickCount(), 0u) << "1200 us later, past the wrap";
    EXPECT_EQ(platform.elapsedUs(), 1800u);
    EXPECT_EQ(platform.date().day, 28);
    platform.jumpTo(500000);
    EXPECT_EQ(platform.date().day, 29) << "a leap year";
    EXPECT_EQ(platform.timeOfDay().hour, 0);
    platform.jumpTo(1000);
    EXPECT_EQ(platform.elapsedUs(), 500000u) << "never backwards";
    platform.setTimer(40);
    EXPECT_EQ(platform.timerDueUs(), 540000u);
}

// With a tick that costs a millisecond the first timer is due at 22 ms: one for the scripts, one for the start, and 20.
struct ScheduledRun : SessionObserver {
    explicit ScheduledRun(const Schedule& schedule) {
        platform.provideContent("movie", test::squareMovie());
        session.open("movie");
        end = runToEnd(session, platform, schedule);
    }
    void eventRaised(const EventNotice&) override { ++events; }

    int events = 0;
    HeadlessPlatform platform{{.tickCostUs = 1000}};
    Session session{platform, {.player = {.loop = false}}, this};
    RunEnd end;
};

TEST(HeadlessRun, OrdersWhatIsDueAtOneTime) {
    {
        const ScheduledRun run({.endAtMs = 22});
        EXPECT_EQ(run.end, RunEnd::timeReached);
        EXPECT_EQ(run.events, 0) << "the end comes before the timer";
    }
    {
        const ScheduledRun run({.endAtMs = 23});
        EXPECT_GT(run.events, 0) << "the timer was due first";
    }
    {
        const ScheduledRun run({.stopAtMs = 0, .endAtMs = 60000});
        EXPECT_EQ(run.end, RunEnd::playbackEnded) << "a stop lets the content end";
        EXPECT_TRUE(run.session.done());
    }
    {
        const ScheduledRun run({.stopAtMs = 5000, .endAtMs = 5000});
        EXPECT_EQ(run.session.framesPresented(), 3u) << "finished before either";
    }
}

TEST(HeadlessRun, IsIdleWhenNothingIsLeftToWaitFor) {
    HeadlessPlatform platform;
    platform.provideContent("movie", test::squareMovie());
    Session session(platform, {});
    ASSERT_EQ(session.open("movie"), OpenResult::opened);
    HostContext& host = const_cast<HostContext&>(session.context());
    host.services->cancelTimer(host);
    EXPECT_EQ(runToEnd(session, platform, {.keys = {{70, 1}, {30, 2}}, .endAtMs = 100}), RunEnd::idle);
    EXPECT_EQ(platform.elapsedMs(), 70u) << "both keys were waited for, the end was not";
}

TEST(Files, KeepPrivateContentUntilTheyAreClosed) {
    FileTable files;
    const FileHandle handle = files.add(createPrivateFile("_private_content_"));
    ASSERT_NE(handle, invalidFile);
    const std::uint8_t bytes[] = {1, 2, 3, 4};
    std::uint8_t back[2] = {};
    ASSERT_TRUE(files.find(handle)->append(bytes));
    EXPECT_TRUE(files.find(handle)->read(2, back));
    EXPECT_EQ(back[1], 4);
    EXPECT_FALSE(files.find(handle)->read(3, back)) << "one byte is missing";
    EXPECT_FALSE(files.find(handle)->read(0xFFFFFFFF, back));

    const auto privateFiles = [] {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::temp_directory_path()))
            count += entry.path().filename().string().starts_with("qel-") &&
                     std::filesystem::exists(entry.path() / "_private_content_");
        return count;
    };
    const int before = privateFiles();
    files.close(handle);
    EXPECT_EQ(privateFiles(), before - 1);
    EXPECT_EQ(files.find(handle), nullptr);
    EXPECT_EQ(files.find(invalidFile), nullptr);
    EXPECT_EQ(files.add(makeMemoryFile({})), handle) << "handles are used again";
    EXPECT_EQ(files.add(nullptr), invalidFile);
}

}  // namespace
}  // namespace qel
