// The front end: which content it takes, what it raises, and how it is left.
#include <gtest/gtest.h>

#include "support/playback.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

MovieFile threeFrames() {
    return smallMovie(8, 8,
                      {rectangle(10, 1, 4, 4), frameOf({author::place(10, 0)}), frameOf({author::move(0, at(2, 2))}),
                       frameOf({author::move(0, at(4, 4))})});
}

TEST(FrontEnd, TakesContentByItsMagic) {
    struct Row {
        const char* magic;
        OpenResult expected;
    };
    for (const Row& row :
         {Row{"VIS", OpenResult::opened}, Row{"VIX", OpenResult::refused}, Row{"ZVIS", OpenResult::opened},
          Row{"ZVIX", OpenResult::refused}, Row{"SAF", OpenResult::opened}, Row{"MSX", OpenResult::refused},
          Row{"MSF", OpenResult::refused}, Row{"MSS", OpenResult::refused}, Row{"", OpenResult::refused}}) {
        Bytes content(40, 0);
        std::copy_n(row.magic, std::char_traits<char>::length(row.magic), content.begin());
        EXPECT_EQ(play(content).opened, row.expected) << row.magic;
    }
    EXPECT_EQ(play(Bytes{'V', 'I', 'S'}).opened, OpenResult::refused) << "shorter than what is sniffed";
}

TEST(FrontEnd, RefusesTheContainerVariantWhereverItsMarkLies) {
    Bytes near(40, 0), far(300, 0);
    near[0] = far[0] = 'S', near[1] = far[1] = 'A', near[2] = far[2] = 'F';
    near[9] = 4, near[4 + 14] = 2;
    far[8] = 1, far[256 + 14] = 2;
    EXPECT_EQ(play(near).opened, OpenResult::refused);
    EXPECT_EQ(play(far).opened, OpenResult::refused);
    far[256 + 14] = 3;
    EXPECT_EQ(play(far).opened, OpenResult::opened);
    far.resize(200);
    EXPECT_EQ(play(far).opened, OpenResult::refused) << "the mark cannot be read";
}

TEST(FrontEnd, RaisesTheEventsOfAMovieInOrder) {
    const Playback playback = play(visFile(threeFrames()));
    EXPECT_EQ(playback.eventNumbers(), "1 5 6 3 8");
    ASSERT_EQ(playback.events.size(), 10u);
    EXPECT_EQ(playback.events[1].value, 1u) << "the first pass";
    EXPECT_EQ(playback.events[2].value, 0u);
    const std::vector<std::uint64_t> progress{playback.events[4].value, playback.events[6].value,
                                              playback.events[8].value};
    EXPECT_EQ(progress, (std::vector<std::uint64_t>{85, 170, 255}));
    EXPECT_TRUE(playback.finished());
    EXPECT_EQ(playback.ending.reason, static_cast<std::uint32_t>(FinishReason::end));
    EXPECT_EQ(playback.blocksLeft, 0);
}

TEST(FrontEnd, NumbersThePassesOfALoop) {
    PlayOptions options;
    options.session.player.loop = true;
    options.mostFrames = 7;
    const Playback playback = play(visFile(threeFrames()), options);
    std::vector<std::uint64_t> passes;
    for (const SeenEvent& seen : playback.events)
        if (seen.event == HostEvent::newPass) passes.push_back(seen.value);
    EXPECT_EQ(passes, (std::vector<std::uint64_t>{1, 2, 3}));
    ASSERT_EQ(playback.frames.size(), 7u);
    EXPECT_EQ(playback.frames[0], playback.frames[3]) << "every pass shows the same";
    EXPECT_EQ(playback.blocksLeft, 0);
}

TEST(FrontEnd, TellsTheHostWhatTheContentIs) {
    struct Row {
        std::uint8_t version;
        bool fit;
        std::uint8_t oldFormat;
    };
    for (const Row& row :
         {Row{16, false, 1}, Row{17, false, 0}, Row{17, true, 2}, Row{21, false, 1}, Row{22, true, 2}}) {
        MovieFile movie = threeFrames();
        movie.version = row.version;
        movie.fitToScreen = row.fit;
        movie.dropFrames = true;
        movie.properties.background(0x0000FF);
        const ContentInfo info = play(visFile(movie)).info;
        EXPECT_EQ(info.oldFormat, row.oldFormat) << "version " << int{row.version};
        EXPECT_EQ(info.kind, ContentKind::movie);
        EXPECT_EQ(info.version, row.version);
        EXPECT_EQ(info.width, 8u);
        EXPECT_EQ(info.height, 8u);
        EXPECT_EQ(info.paletteCount, 1) << "the content names a background";
        EXPECT_EQ(info.extra, blue);
        EXPECT_EQ(info.option1, 0);
        EXPECT_EQ(info.option2, 1);
    }
}

TEST(FrontEnd, EndsWithTheFourthReasonWhenTheHostRefuses) {
    PlayOptions options;
    options.session.faults.refuseContent = true;
    const Playback playback = play(visFile(threeFrames()), options);
    EXPECT_EQ(playback.eventNumbers(), "1 9");
    EXPECT_TRUE(playback.aborted(AbortReason::noTemporaryFile));
    EXPECT_EQ(playback.blocksLeft, 0);
}

TEST(FrontEnd, ReadsNothingMoreOnceAReadHasFailed) {
    const Bytes content = visFile(threeFrames());
    for (std::uint64_t n = 2; n <= play(content).reads.size(); ++n) {
        PlayOptions options;
        options.session.faults.failedReads = {n};
        EXPECT_LE(play(content, options).reads.size(), n) << "read " << n;
    }
}

TEST(FrontEnd, ContentShorterThanAnnouncedIsBad) {
    MovieFile tooLong = threeFrames();
    tooLong.contentLength = 100000;  // more than the file has
    EXPECT_TRUE(play(visFile(tooLong)).aborted(AbortReason::badContent));

    MovieFile tooShort = threeFrames();
    tooShort.contentLength = 60;  // less than the records have
    EXPECT_TRUE(play(visFile(tooShort)).aborted(AbortReason::badContent));

    MovieFile endless = threeFrames();
    endless.ended = false;
    EXPECT_TRUE(play(visFile(endless)).aborted(AbortReason::badContent));
}

TEST(FrontEnd, YieldsWhenItsTimeSliceIsUsedUp) {
    // With one millisecond for each look at the clock, a slice of 5 is over after 5 of them.
    PlayOptions options;
    options.session.player.timeSlice = 5;
    MovieFile movie = smallMovie(8, 8, {});
    for (std::uint16_t id = 10; id < 60; ++id) movie.records.push_back(author::solidFill(id, {}));
    movie.records.push_back(frameOf({}));
    HeadlessPlatform platform(VirtualTime{.tickCostUs = 1000});
    platform.provideContent("content", visFile(movie));
    struct Timers : SessionObserver {
        std::vector<std::uint32_t> intervals;
        void serviceCalled(const ServiceCall& call) override {
            if (const auto* armed = std::get_if<calls::ArmTimer>(&call)) intervals.push_back(armed->interval);
        }
    } timers;
    Session session(platform, options.session, &timers);
    ASSERT_EQ(session.open("content"), OpenResult::opened);
    for (int i = 0; i < 5; ++i) {
        platform.jumpTo(*platform.timerDueUs());
        session.timerFired();
    }
    EXPECT_EQ(timers.intervals, (std::vector<std::uint32_t>(6, 1)));
}

// Whoever hosts a player may leave it at any moment: between two ticks, or from inside any event.
TEST(FrontEnd, LeavesNothingBehindWheneverItIsDestroyed) {
    const Bytes plain = visFile(threeFrames());
    for (int ticks = 0; ticks < 12; ++ticks) {
        HeadlessPlatform platform;
        platform.provideContent("content", plain);
        struct Balance : SessionObserver {
            std::int64_t blocks = 0;
            int events = 0;
            void eventRaised(const EventNotice&) override { ++events; }
            void serviceCalled(const ServiceCall& call) override {
                if (const auto* allocated = std::get_if<calls::Allocate>(&call)) blocks += allocated->result ? 1 : 0;
                if (std::holds_alternative<calls::Free>(call)) --blocks;
            }
        } balance;
        Session session(platform, SessionOptions{.player = {.timeSlice = 0}}, &balance);
        ASSERT_EQ(session.open("content"), OpenResult::opened);
        for (int i = 0; i < ticks; ++i) {
            platform.jumpTo(platform.timerDueUs().value_or(0));
            session.timerFired();
        }
        const int before = balance.events;
        session.end();
        EXPECT_EQ(balance.blocks, 0) << ticks << " ticks";
        EXPECT_EQ(balance.events, before) << "raised while it was taken down after " << ticks << " ticks";
    }
}

TEST(FrontEnd, EndsAtOnceWhenItIsDestroyedFromInsideAnEvent) {
    for (std::uint32_t atEvent = 1; atEvent <= 6; ++atEvent) {
        HeadlessPlatform platform;
        platform.provideContent("content", visFile(threeFrames()));
        struct Leaver : SessionObserver {
            Session* session = nullptr;
            std::uint32_t leaveAt = 0, seen = 0;
            void eventRaised(const EventNotice&) override {
                if (++seen != leaveAt) return;
                session->end();
                session->end();  // asked for twice it happens once
            }
        } leaver;
        Session session(platform, {}, &leaver);
        leaver.session = &session;
        leaver.leaveAt = atEvent;
        ASSERT_EQ(session.open("content"), OpenResult::opened);
        runToEnd(session, platform, {});
        EXPECT_EQ(leaver.seen, atEvent) << "nothing is raised behind it";
        EXPECT_FALSE(session.playing());
    }
}

TEST(FrontEnd, FitsWhatIsPlacedToANewFrameBuffer) {
    HeadlessPlatform platform;
    platform.provideContent("content", visFile(threeFrames()));
    std::vector<std::uint16_t> larger(16 * 16 * 2);
    struct Attacher : SessionObserver {
        std::uint32_t widths[3] = {};
        int frames = 0;
        void eventRaised(const EventNotice& notice) override {
            if (notice.event != HostEvent::presentFrame || frames == 3) return;
            widths[frames++] = reinterpret_cast<const FrameRecord*>(notice.value)->width;
        }
    } attacher;
    Session session(platform, {}, &attacher);
    ASSERT_EQ(session.open("content"), OpenResult::opened);
    while (attacher.frames < 1) {
        platform.jumpTo(*platform.timerDueUs());
        session.timerFired();
    }
    playerAttachFrameBuffer(*session.context().player, larger.data(), 16, 16);
    while (attacher.frames < 2) {
        platform.jumpTo(*platform.timerDueUs());
        session.timerFired();
    }
    EXPECT_EQ(attacher.widths[1], 16u);
    // The stage lies in the middle at its own size, so the square that the second frame moves to (2, 2) stands at (6,
    // 6).
    EXPECT_EQ(larger[6 * 16 + 6], red);
    EXPECT_EQ(larger[5 * 16 + 5], white);
    EXPECT_EQ(larger[10 * 16 + 10], white);
}

TEST(FrontEnd, AStopEndsPlaybackByItsOwnEvent) {
    PlayOptions options;
    options.session.player.loop = true;
    options.schedule.stopAtMs = 50;
    const Playback playback = play(visFile(threeFrames()), options);
    EXPECT_TRUE(playback.finished());
    EXPECT_EQ(playback.events.back().event, HostEvent::finished);
    EXPECT_LT(playback.frames.size(), 3u);
    EXPECT_EQ(playback.blocksLeft, 0);
}

}  // namespace
}  // namespace qel::test
