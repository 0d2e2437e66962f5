// Content that is broken in every place: whatever happens, playback comes to a defined end and gives everything back.
#include <gtest/gtest.h>

#include "support/control_movie.h"
#include "support/playback.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::move;
using author::place;

// A movie that uses everything that is drawn: sprites in sprites, curves, key frames, tables, trailer blocks.
MovieFile everything() {
    author::Outline round;
    round.style({.line = {}, .fill0 = 1, .fill1 = 2}).moveTo({2, 0}).curveBy({4, 6}, {-6, 4}).lineBy({-3, -9});
    round.style({.line = 5, .fill0 = 6, .fill1 = {}}).moveBy({1, 1}).lineTo({5, 5}).lineTo({0, 9}).lineTo({1, 1});
    MovieFile movie = smallMovie(
        24, 20,
        {author::lineStyle(5, {}, 6),
         author::gradientFill(6, author::GradientType::radial, {.a = 3000, .d = 3000},
                              std::vector<author::GradientStop>{{0, 0xFF0000}, {99, 0x00FF00, 80}}),
         author::bitmapFill(7, 1, 30, identityMatrix),
         author::shape({.id = 10, .bounds = {0, 0, 9, 9}, .outline = round, .bitmapFills = {}, .gradientFills = {6}}),
         rectangle(11, 2, 6, 5), rectangle(12, 6, 9, 9), rectangle(13, 7, 3, 3),
         author::morphShape(14, 11, 12, std::vector<author::StylePair>{{2, 6}}),
         author::morphShape(15, 11, 13, std::vector<author::StylePair>{{2, 3}, {2, 2}}),
         spriteOf(
             20, {frameOf({place(10, 0), move(0, at(2, 2))}), frameOf({move(0, {50000, 20000, -20000, 50000, 3, 3})})}),
         spriteOf(21, {frameOf({place(20, 0), place(11, 1)}), author::keyFrame(40, 1, place(20, 0)), frameOf({})}),
         author::keyFrameList(std::vector<std::uint16_t>{1, 3}),
         frameOf({place(21, 0), move(0, at(8, 4)), place(14, 1), place(13, 2), place(15, 3)}),
         frameOf({move(1, at(9, 9)), author::ratio(1, 9000), author::colour(1, {.redMultiplier = 99}),
                  author::colour(0, {.alphaMultiplier = 99})}),
         author::keyFrame(41, 2, author::joined({author::instanceNumber(3), place(21, 0)})),
         frameOf({author::removeAt(0)})});
    movie.leading = {author::nameTable(std::vector<author::Name>{{10, "shape"}, {20, "clip"}})};
    movie.properties.labels(std::vector<author::Label>{{0, "start"}, {2, "key"}})
        .keyFrameIndex(std::vector<author::Properties::KeyFrame>{{2, 41}})
        .commands(author::textCommand(CommandNumber::openUrl, 150, "http://example.invalid/"));
    movie.fontMode = 1;
    movie.fontBlock = Bytes(12, 1);
    movie.extensionBlock = Bytes(30, 2);
    return movie;
}

void expectADefinedEnd(const Playback& playback, const std::string& what) {
    EXPECT_EQ(playback.blocksLeft, 0) << what;
    EXPECT_EQ(playback.end, RunEnd::playbackEnded) << what;
    if (playback.opened == OpenResult::opened) {
        EXPECT_NE(playback.ending.kind, Ending::Kind::none) << what;
    }
}

// Keys do nothing to content that waits for none.
PlayOptions quick() {
    PlayOptions options;
    options.keepFrames = false;
    options.mostFrames = 60;
    options.schedule.keys = controlKeys();
    return options;
}

std::vector<Bytes> allContents() {
    const Bytes plain = visFile(everything());
    return {plain, author::zvisFile(plain), visFile(controlMovie())};
}

TEST(Sweep, TheWholeMoviesPlay) {
    const std::vector<Bytes> contents = allContents();
    for (const Bytes& content : {contents[0], contents[1]}) {
        const Playback playback = play(content);
        EXPECT_TRUE(playback.finished());
        EXPECT_EQ(playback.frames.size(), 4u);
    }
    PlayOptions withKeys = quick();
    const Playback control = play(contents[2], withKeys);
    EXPECT_TRUE(control.finished());
    EXPECT_GT(control.frameTimesMs.size(), 20u) << "loops, gotos and flashes were played";
    EXPECT_GT(control.deviceCalls.size(), 20u);
}

TEST(Sweep, CutAtEveryLength) {
    for (const Bytes& content : allContents())
        for (std::size_t length = 0; length < content.size(); ++length)
            expectADefinedEnd(
                play(Bytes(content.begin(), content.begin() + static_cast<std::ptrdiff_t>(length)), quick()),
                "cut to " + std::to_string(length));
}

TEST(Sweep, EveryAllocationFailingOnceAndFromThereOn) {
    for (const Bytes& content : allContents()) {
        const std::uint64_t count = play(content, quick()).allocations;
        ASSERT_GT(count, 20u);
        for (std::uint64_t n = 1; n <= count; ++n) {
            PlayOptions once = quick(), from = quick();
            once.session.faults.failedAllocations = {n};
            from.session.faults.allocationsFailFrom = n;
            expectADefinedEnd(play(content, once), "allocation " + std::to_string(n));
            expectADefinedEnd(play(content, from), "allocations from " + std::to_string(n));
        }
    }
}

TEST(Sweep, EveryReadFailing) {
    for (const Bytes& content : allContents()) {
        const std::uint64_t count = play(content, quick()).reads.size();
        for (std::uint64_t n = 1; n <= count; ++n) {
            PlayOptions options = quick();
            options.session.faults.failedReads = {n};
            const Playback playback = play(content, options);
            expectADefinedEnd(playback, "read " + std::to_string(n));
            EXPECT_FALSE(playback.finished()) << "read " << n;
        }
    }
}

TEST(Sweep, EveryBudget) {
    for (const Bytes& content : {visFile(everything()), visFile(controlMovie())})
        for (std::uint32_t budget = 0; budget < 8000; budget += 8) {
            PlayOptions options = quick();
            options.session.player.budget = budget;
            const Playback playback = play(content, options);
            expectADefinedEnd(playback, "budget " + std::to_string(budget));
            const bool refused = playback.opened == OpenResult::refused && budget < 1000;  // not even a movie fits
            EXPECT_TRUE(refused || playback.finished() || playback.aborted(AbortReason::outOfMemory)) << budget;
        }
}

TEST(Sweep, EveryByteWrong) {
    for (const Bytes& content : allContents())
        for (std::size_t i = 0; i < content.size(); ++i)
            for (const int change : {0x01, 0x80, 0xFF, int{content[i]}}) {
                Bytes changed = content;
                changed[i] = static_cast<std::uint8_t>(changed[i] ^ change);
                expectADefinedEnd(play(changed, quick()),
                                  "byte " + std::to_string(i) + " changed by " + std::to_string(change));
            }
}

}  // namespace
}  // namespace qel::test
