// Sounds: which channel plays what, volumes, and what happens to a sound that is no more.
#include <gtest/gtest.h>

#include "author/character_records.h"
#include "movie/movie_engine.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using Calls = std::vector<std::string>;

Bytes soundOf(std::uint16_t id, std::uint8_t format, std::size_t bytes = 4) {
    return author::sound({.id = id, .format = format, .data = Bytes(bytes, 7)});
}

Calls callsOf(std::initializer_list<Bytes> records) {
    const Playback playback = play(visFile(smallMovie(1, 1, records)));
    EXPECT_TRUE(playback.finished());
    EXPECT_EQ(playback.blocksLeft, 0);
    Calls calls = playback.deviceCalls;
    // The end of the pass and the teardown stop both channels.
    for (int i = 0; i < 2; ++i)
        for (const char* expected : {"stop 2 sound -1", "stop 1 sound -1"}) {
            EXPECT_EQ(calls.empty() ? "" : calls.back(), expected);
            if (!calls.empty()) calls.pop_back();
        }
    return calls;
}

TEST(Sounds, PlayOnTheChannelOfTheirFormat) {
    for (unsigned format = 0; format < 16; ++format) {
        const int channel = format == 8                                                                ? 1
                            : format == 0 || format == 4 || format == 5 || format == 7 || format == 10 ? 2
                                                                                                       : 0;
        const Calls expected =
            channel == 0 ? Calls{} : Calls{"start " + std::to_string(channel) + " sound 30 volume 100 bytes 4"};
        EXPECT_EQ(callsOf({soundOf(30, static_cast<std::uint8_t>(format)), frameOf({author::startSound(30)})}),
                  expected)
            << format;
    }
}

TEST(Sounds, FollowTheVolumeAndStop) {
    EXPECT_EQ(callsOf({soundOf(30, 8), soundOf(31, 4), frameOf({author::volume(50), author::startSound(30)}),
                       frameOf({author::startSound(31), author::volume(200)}), frameOf({author::stopSound(31)})}),
              (Calls{"start 1 sound 30 volume 50 bytes 4", "start 2 sound 31 volume 50 bytes 4", "volume 1 200",
                     "volume 2 200", "stop 1 sound 31", "stop 2 sound 31"}));
}

TEST(Sounds, AreMutedByCommandsAndByTheHost) {
    const Bytes off = author::command(CommandNumber::soundOff, 255), on = author::command(CommandNumber::soundOn, 255);
    const Bytes start = author::command(CommandNumber::startSound, Bytes{255, 31, 0}),
                stop = author::command(CommandNumber::stopSound, Bytes{255, 31, 0});
    EXPECT_EQ(callsOf({soundOf(30, 8), soundOf(31, 0), frameOf({author::startSound(30), author::commands(off)}),
                       frameOf({author::commands(start)}), frameOf({author::commands(on)}),
                       frameOf({author::commands(stop)})}),
              (Calls{"start 1 sound 30 volume 100 bytes 4", "volume 1 0", "start 2 sound 31 volume 0 bytes 4",
                     "volume 1 100", "volume 2 100", "stop 1 sound 31", "stop 2 sound 31"}));

    LiveMovie live(visFile(smallMovie(1, 1, {soundOf(30, 8), frameOf({author::startSound(30)}), frameOf({})})));
    live.playFrames(1);
    muteMovie(live.movie(), true);
    pauseMovieSounds(live.movie());
    resumeMovieSounds(live.movie());
    muteMovie(live.movie(), false);
    EXPECT_EQ(live.seen().deviceCalls,
              (Calls{"start 1 sound 30 volume 100 bytes 4", "volume 1 0", "pause 1", "resume 1", "volume 1 100"}));
}

TEST(Sounds, LargerThanAChunkOrABufferArriveWhole) {
    EXPECT_EQ(callsOf({soundOf(30, 8, 20000), frameOf({author::startSound(30)})}),
              (Calls{"start 1 sound 30 volume 100 bytes 20000"}));
    // Started before its record has streamed by, it is read from where the scan has found it.
    EXPECT_EQ(callsOf({frameOf({author::startSound(30)}), soundOf(30, 8, 20000), frameOf({})}),
              (Calls{"start 1 sound 30 volume 100 bytes 20000"}));
}

TEST(Sounds, ThatAreNotThereEndPlayback) {
    for (const std::uint16_t id : {std::uint16_t{30}, std::uint16_t{1}, std::uint16_t{9999}}) {
        const Playback playback = play(visFile(smallMovie(1, 1, {frameOf({author::startSound(id)})})));
        EXPECT_TRUE(playback.aborted(AbortReason::outOfMemory)) << id;
    }
}

TEST(Sounds, LiveWhileAChannelHoldsThem) {
    LiveMovie live(
        visFile(smallMovie(1, 1,
                           {soundOf(30, 8, 100), frameOf({author::startSound(30)}),
                            author::releaseCharacters(std::vector<std::uint16_t>{30}), frameOf({}), frameOf({})})));
    live.playFrames(2);
    const ChannelRecord& channel = live.movie().channels[0];
    ASSERT_TRUE(channel.sound);
    EXPECT_FALSE(channel.sound->inDictionary);
    EXPECT_EQ(channel.sound->data[99], 7);
}

}  // namespace
}  // namespace qel::test
