#include "host/session.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>

#include "host/headless_run.h"
#include "host/small_movies.h"

namespace qel {
namespace {

// The virtual clock, with a count of the files that are open.
class TestPlatform : public HeadlessPlatform {
  public:
    TestPlatform() { provideContent("movie", test::squareMovie()); }
    FileHandle openContent(const std::string& path) override { return counted(HeadlessPlatform::openContent(path)); }
    FileHandle createTemporary(std::string_view name) override {
        return counted(HeadlessPlatform::createTemporary(name));
    }
    void closeFile(FileHandle file) override {
        --openFiles;
        HeadlessPlatform::closeFile(file);
    }
    int openFiles = 0;

  private:
    FileHandle counted(FileHandle file) {
        openFiles += file != invalidFile;
        return file;
    }
};

class TestObserver : public SessionObserver {
  public:
    void eventRaised(const EventNotice& notice) override {
        events += std::to_string(static_cast<int>(notice.event));
        if (onEvent) onEvent(notice.event);
    }
    void serviceCalled(const ServiceCall& call) override {
        reads += std::holds_alternative<calls::Read>(call);
        allocations += std::holds_alternative<calls::Allocate>(call);
        if (const auto* arm = std::get_if<calls::ArmTimer>(&call)) armed = *arm;
        if (onService) onService(call);
    }
    std::string events;  // one digit each
    std::uint64_t reads = 0, allocations = 0;
    calls::ArmTimer armed;
    std::function<void(HostEvent)> onEvent;
    std::function<void(const ServiceCall&)> onService;
};

class SessionTest : public testing::Test {
  protected:
    HostContext& context() { return const_cast<HostContext&>(session.context()); }
    const PlatformServices& services() { return *context().services; }

    TestPlatform platform;
    TestObserver observer;
    Session session{platform, {.player = {.loop = false}}, &observer};
};

TEST_F(SessionTest, AnswersEveryEventAsTheDeviceDoes) {
    const auto answer = [this](std::uint32_t event, std::uint32_t argument) {
        return Session::hostCallback(context(), HostEvent{event}, argument, 0);
    };
    struct Row {
        std::uint32_t event, argument, answer;
    };
    const Row rows[] = {{2, 0, 1}, {4, 0, 1},  {5, 0, 0},  {6, 0, 0},  {6, 1, 1}, {6, 2, 1}, {6, 3, 0}, {7, 0, 0},
                        {7, 1, 1}, {7, 2, 1},  {7, 3, 1},  {7, 4, 0},  {7, 5, 1}, {7, 6, 1}, {7, 7, 1}, {7, 8, 1},
                        {7, 9, 1}, {7, 10, 1}, {7, 11, 1}, {7, 12, 0}, {8, 1, 1}, {9, 1, 0}, {0, 0, 0}, {10, 0, 0}};
    for (const Row& row : rows)
        EXPECT_EQ(answer(row.event, row.argument), row.answer)
            << "event " << row.event << ", argument " << row.argument;
}

TEST_F(SessionTest, StandsStillWhilePaused) {
    ASSERT_EQ(session.open("movie"), OpenResult::opened);
    const auto fire = [this] {
        platform.jumpTo(platform.timerDueUs().value());
        session.timerFired();
    };
    while (session.framesPresented() < 1) fire();
    session.pause();
    session.keyInput(154);  // would end the movie
    fire();                 // the message that was on its way
    EXPECT_FALSE(platform.timerDueUs()) << "nothing to wait for";
    platform.jumpTo(60000000);
    EXPECT_EQ(session.framesPresented(), 1u);
    session.resume();
    EXPECT_EQ(runToEnd(session, platform, {}), RunEnd::playbackEnded);
    EXPECT_EQ(session.framesPresented(), 3u);
    EXPECT_GE(platform.elapsedMs(), 60000u + 50) << "the pause is not caught up with";
}

TEST_F(SessionTest, MakesFrameBuffersOfUpTo4096Pixels) {
    struct Row {
        std::uint32_t width, height, answer;
    };
    const Row rows[] = {{16, 12, 1},  {4096, 1, 1},       {1, 4096, 1}, {4097, 1, 0},
                        {1, 4097, 0}, {0xFFFFFFFF, 2, 0}, {0, 0, 1}};
    for (const Row& row : rows) {
        const ContentInfo info{.width = row.width, .height = row.height};
        const auto value = reinterpret_cast<std::uintptr_t>(&info);
        EXPECT_EQ(Session::hostCallback(context(), HostEvent::contentOpened, 0, value), row.answer)
            << row.width << " x " << row.height;
        if (row.answer == 0) continue;
        EXPECT_EQ(context().frameWidth, row.width);
        // Every byte is there to be written, in both buffers.
        std::fill_n(reinterpret_cast<std::uint8_t*>(context().frameBuffer), row.width * row.height * 4,
                    std::uint8_t{1});
        std::fill_n(reinterpret_cast<std::uint8_t*>(context().stagingBuffer), row.width * row.height * 4,
                    std::uint8_t{1});
    }
}

TEST_F(SessionTest, ArmsTheTimerWithTwentyMillisecondsForOne) {
    for (const auto& [interval, milliseconds] : {std::pair{1u, 20u}, {2u, 2u}, {100u, 100u}, {0u, 0u}}) {
        context().skipNextTick = true;
        services().armTimer(context(), interval);
        EXPECT_EQ(platform.timerDueUs(), platform.elapsedUs() + milliseconds * 1000);
        EXPECT_EQ(observer.armed.interval, interval);
        EXPECT_EQ(observer.armed.milliseconds, milliseconds);
        EXPECT_FALSE(context().skipNextTick) << "the timer that was to be swallowed has been replaced";
    }
}

TEST_F(SessionTest, SwallowsOneTimerMessageAfterACancel) {
    ASSERT_EQ(session.open("movie"), OpenResult::opened);
    const std::uint64_t readsToOpen = observer.reads;
    services().cancelTimer(context());
    session.timerFired();
    EXPECT_EQ(observer.reads, readsToOpen) << "swallowed";
    EXPECT_FALSE(platform.timerDueUs()) << "and killed";
    session.timerFired();
    EXPECT_GT(observer.reads, readsToOpen) << "the next one steps";
}

TEST_F(SessionTest, PlaysToTheEndAndIsDone) {
    ASSERT_EQ(session.open("movie"), OpenResult::opened);
    EXPECT_EQ(runToEnd(session, platform, {}), RunEnd::playbackEnded);
    EXPECT_EQ(observer.events, "1563636368");
    EXPECT_TRUE(session.done());
    EXPECT_EQ(session.ending().kind, Ending::Kind::finished);
    EXPECT_EQ(session.framesPresented(), 3u);
    EXPECT_EQ(platform.openFiles, 0);
    ASSERT_EQ(session.open("movie"), OpenResult::opened) << "and opens the next";
    EXPECT_FALSE(session.done());
}

TEST_F(SessionTest, TouchesNoPlayerAfterItAborted) {
    auto cut = test::squareMovie();
    cut.resize(cut.size() - 20);
    platform.provideContent("cut", cut);
    ASSERT_EQ(session.open("cut"), OpenResult::opened);
    EXPECT_EQ(runToEnd(session, platform, {}), RunEnd::playbackEnded);
    EXPECT_EQ(session.ending().kind, Ending::Kind::aborted);
    EXPECT_EQ(session.ending().reason, 3u);
    EXPECT_FALSE(session.done());
    const std::string events = observer.events;
    session.timerFired();
    session.keyInput(50);
    session.requestStop();
    session.stopAndFinish();
    session.end();
    EXPECT_EQ(observer.events, events);
}

TEST_F(SessionTest, EndsFromInsideEveryEventAndRaisesNothingMore) {
    const std::string all = "1563636368";
    for (std::size_t last = 1; last <= all.size(); ++last) {
        observer.events.clear();
        observer.onEvent = [&](HostEvent) {
            if (observer.events.size() < last) return;
            session.end();
            session.end();
            EXPECT_FALSE(session.playing());
        };
        ASSERT_EQ(session.open("movie"), OpenResult::opened);
        runToEnd(session, platform, {});
        EXPECT_EQ(observer.events, all.substr(0, last));
        EXPECT_EQ(session.ending().kind, last == all.size() ? Ending::Kind::finished : Ending::Kind::ended);
        EXPECT_EQ(platform.openFiles, 0);
        EXPECT_EQ(context().frameBuffer, nullptr);
    }
}

TEST_F(SessionTest, EndsFromInsideEveryServiceCall) {
    for (int at = 1;; ++at) {
        int count = 0;
        bool ended = false;
        observer.onService = [&](const ServiceCall&) {
            if (!session.playing() || ++count != at) return;
            ended = true;
            session.end();
        };
        ASSERT_EQ(session.open("movie"), OpenResult::opened);
        runToEnd(session, platform, {});
        EXPECT_EQ(platform.openFiles, 0) << "call " << at;
        if (!ended) break;
    }
}

TEST_F(SessionTest, EndsAfterTheFrameThatReachesTheLimitBeforeItsProgressEvent) {
    Session limited(platform, {.player = {.loop = true}, .maximumFrames = 2}, &observer);
    ASSERT_EQ(limited.open("movie"), OpenResult::opened);
    EXPECT_EQ(runToEnd(limited, platform, {}), RunEnd::playbackEnded);
    EXPECT_EQ(observer.events, "156363");
    EXPECT_EQ(limited.ending().kind, Ending::Kind::ended);
}

TEST_F(SessionTest, StopsWithoutWaitingForTheTimer) {
    ASSERT_EQ(session.open("movie"), OpenResult::opened);
    session.timerFired();
    session.stopAndFinish();
    EXPECT_TRUE(session.done());
    EXPECT_EQ(observer.events.back(), '8');

    platform.provideContent("slow", test::squareMovie({.frameMs = 60000}));
    ASSERT_EQ(session.open("slow"), OpenResult::opened);
    session.timerFired();
    const std::uint64_t before = platform.elapsedMs();
    session.stopAndFinish(500);
    EXPECT_FALSE(session.playing());
    EXPECT_LE(platform.elapsedMs() - before, 502u);
}

TEST_F(SessionTest, ReadsTemporaryContentFromItsStartOnceSwitched) {
    ASSERT_EQ(session.open("movie"), OpenResult::opened);
    const std::array<std::uint8_t, 3> expanded = {7, 8, 9};
    const std::array<std::uint8_t, 1> older = {1};
    std::uint8_t bytes[2] = {};
    ASSERT_TRUE(services().createTemporaryContent(context(), 4));
    ASSERT_TRUE(services().writeTemporaryContent(context(), older));
    ASSERT_TRUE(services().createTemporaryContent(context(), 3)) << "created anew";
    ASSERT_TRUE(services().writeTemporaryContent(context(), expanded));
    ASSERT_TRUE(services().readContent(context(), 0, 2, bytes));
    EXPECT_EQ(bytes[0], 'V');
    services().switchToTemporaryContent(context());
    ASSERT_TRUE(services().readContent(context(), 0, 2, bytes));
    EXPECT_EQ(bytes[0], 7);
    EXPECT_TRUE(services().readContent(context(), 1, 2, bytes));
    EXPECT_FALSE(services().readContent(context(), 2, 2, bytes)) << "all or nothing";
    session.end();
    EXPECT_EQ(platform.openFiles, 0);
}

TEST_F(SessionTest, ReportsContentThatIsNotToBeHad) {
    platform.provideContent("text", {'h', 'e', 'l', 'l', 'o'});
    EXPECT_EQ(session.open("text"), OpenResult::refused);
    EXPECT_EQ(session.open("/nowhere/movie"), OpenResult::cannotOpen);
    EXPECT_EQ(session.open("/"), OpenResult::cannotOpen) << "a directory";
    EXPECT_EQ(platform.openFiles, 0);
}

// Whatever read or allocation fails, playback ends by an event or goes on, and leaves nothing behind.
TEST_F(SessionTest, SurvivesEveryFailure) {
    ASSERT_EQ(session.open("movie"), OpenResult::opened);
    runToEnd(session, platform, {});
    const std::uint64_t reads = observer.reads, allocations = observer.allocations;
    ASSERT_GT(reads, 2u);
    ASSERT_GT(allocations, 2u);
    const auto playWith = [this](const Faults& faults) {
        Session faulty(platform, {.player = {.loop = false}, .faults = faults});
        if (faulty.open("movie") != OpenResult::opened) return Ending{};
        EXPECT_EQ(runToEnd(faulty, platform, {}), RunEnd::playbackEnded);
        EXPECT_EQ(platform.openFiles, 0);
        return faulty.ending();
    };
    for (std::uint64_t n = 2; n <= reads; ++n) EXPECT_EQ(playWith({.failedReads = {n}}).reason, 3u) << "read " << n;
    for (std::uint64_t n = 1; n <= allocations; ++n) {
        playWith({.failedAllocations = {n}});
        EXPECT_NE(playWith({.allocationsFailFrom = n}).kind, Ending::Kind::ended) << "allocation " << n;
    }
    EXPECT_EQ(playWith({.failedReads = {1}}).kind, Ending::Kind::none) << "no header: refused";
    EXPECT_EQ(playWith({.refuseContent = true}).reason, 4u);
}

}  // namespace
}  // namespace qel
