// When frames are shown, on the virtual clock. A look at the clock takes 10 microseconds, so times are exact to a
// millisecond.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/live_movie.h"
#include "support/playback.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

std::vector<std::uint64_t> intervals(const Playback& playback) {
    std::vector<std::uint64_t> gaps;
    for (std::size_t i = 1; i < playback.frameTimesMs.size(); ++i)
        gaps.push_back(playback.frameTimesMs[i] - playback.frameTimesMs[i - 1]);
    return gaps;
}

MovieFile emptyFrames(std::size_t count, std::uint16_t durationMs) {
    MovieFile movie = smallMovie(4, 4, {});
    movie.properties.frameDuration(durationMs);
    for (std::size_t i = 0; i < count; ++i) movie.records.push_back(frameOf({}));
    return movie;
}

TEST(NormalPacing, ShowsAFrameALittleBeforeItsTime) {
    struct Row {
        std::uint16_t duration;
        std::uint64_t gap;
    };
    for (const Row& row : {Row{33, 23}, Row{12, 8}, Row{100, 90}, Row{3, 2}}) {
        const Playback playback = play(visFile(emptyFrames(4, row.duration)));
        for (const std::uint64_t gap : intervals(playback))
            EXPECT_NEAR(double(gap), double(row.gap), 1.0) << row.duration;
    }
}

TEST(NormalPacing, EndsWhenTheLastFrameHasHadItsTime) {
    const Playback playback = play(visFile(emptyFrames(2, 200)));
    EXPECT_EQ(playback.events.back().event, HostEvent::finished);
    EXPECT_NEAR(double(playback.events.back().timeMs - playback.frameTimesMs.back()), 200.0, 1.0);
}

TEST(FixedRate, KeepsItsDeadlines) {
    MovieFile movie = emptyFrames(6, 90);
    movie.dropFrames = true;
    const Playback playback = play(visFile(movie));
    ASSERT_EQ(playback.frameTimesMs.size(), 6u);
    EXPECT_NEAR(double(playback.frameTimesMs[1] - playback.frameTimesMs[0]), 60.0, 1.0) << "a third early";
    EXPECT_NEAR(double(playback.frameTimesMs[5] - playback.frameTimesMs[1]), 4 * 90.0, 1.0);
}

TEST(FixedRate, KeepsItsDeadlinesFromPassToPass) {
    MovieFile movie = emptyFrames(3, 60);
    movie.dropFrames = true;
    PlayOptions options;
    options.session.player.loop = true;
    options.mostFrames = 9;
    const Playback playback = play(visFile(movie), options);
    ASSERT_EQ(playback.frameTimesMs.size(), 9u);
    EXPECT_NEAR(double(playback.frameTimesMs[5] - playback.frameTimesMs[2]), 3 * 60.0, 1.0);
    EXPECT_NEAR(double(playback.frameTimesMs[8] - playback.frameTimesMs[5]), 3 * 60.0, 1.0);
}

// A host that looks at the clock slowly is late; frames are passed over, unless they are always to be shown.
TEST(FixedRate, DropsLateFramesButNoKeyFrames) {
    MovieFile movie = emptyFrames(40, 2);
    movie.dropFrames = true;
    movie.records.insert(movie.records.begin(), author::keyFrameList(std::vector<std::uint16_t>{10, 20, 30}));
    const Bytes content = visFile(movie);
    HeadlessPlatform platform(VirtualTime{.tickCostUs = 3000});
    platform.provideContent("content", content);
    struct Frames : SessionObserver {
        std::vector<std::uint64_t> progress;
        void eventRaised(const EventNotice& notice) override {
            if (notice.event == HostEvent::progress) progress.push_back(notice.value);
        }
    } frames;
    Session session(platform, SessionOptions{.player = {.loop = false}}, &frames);
    ASSERT_EQ(session.open("content"), OpenResult::opened);
    runToEnd(session, platform, {});
    for (const std::uint64_t key : {10u, 20u, 30u})
        EXPECT_TRUE(std::ranges::count(frames.progress, key * 255 / 40) == 1) << key;
    EXPECT_LT(frames.progress.size(), 20u);
}

TEST(Loops, ShowTheFirstFrameOfEachPassAtOnce) {
    PlayOptions options;
    options.session.player.loop = true;
    options.mostFrames = 5;
    const Playback playback = play(visFile(emptyFrames(2, 60)), options);
    ASSERT_EQ(playback.frameTimesMs.size(), 5u);
    EXPECT_NEAR(double(playback.frameTimesMs[2] - playback.frameTimesMs[1]), 60.0, 1.0)
        << "the last frame's whole time";
}

TEST(Restart, BeginsOneNewPassHoweverFarTheMovieIs) {
    for (const Phase phase : {Phase::play, Phase::pace, Phase::dispatch, Phase::finish}) {
        LiveMovie live(visFile(emptyFrames(2, 60)));
        live.playFrames(phase == Phase::finish ? 2 : 1);
        ASSERT_TRUE(live.playUntil(phase));
        live.movie().state.restartRequested = true;
        live.playFrames(100);
        const std::string events = live.seen().eventNumbers();
        EXPECT_EQ(events.back(), '8') << events;
        std::size_t passes = 0;
        for (const SeenEvent& seen : live.seen().events) passes += seen.event == HostEvent::newPass;
        EXPECT_EQ(passes, 2u) << static_cast<int>(phase);
    }
}

}  // namespace
}  // namespace qel::test
