// Plays examples/game.json with keys, as a person would: catches stars, loses, and begins anew.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cli/command_line.h"
#include "format/key_codes.h"
#include "script/conversions.h"
#include "script/scope.h"
#include "support/live_movie.h"

namespace qel::test {
namespace {

constexpr auto left = KeyCode::left, right = KeyCode::right, select = KeyCode::select;
constexpr int firstLane = 32, laneWidth = 44;

Bytes builtGame() {
    const std::filesystem::path path = std::filesystem::path(testing::TempDir()) / "qel-game.vis";
    const std::string source = QEL_SOURCE_DIR "/examples/game.json", output = path.string();
    const char* const words[] = {"qel", "build", source.c_str(), "-o", output.c_str()};
    if (cli::runCommandLine(std::size(words), words) != 0) return {};
    std::ifstream file(path, std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
    std::filesystem::remove(path);
    return bytes;
}

PlayOptions withoutPictures() {
    PlayOptions options;
    options.keepFrames = false;
    return options;
}

struct Game : LiveMovie {
    explicit Game(const Bytes& content) : LiveMovie(content, withoutPictures()) {}

    int variable(std::string_view name) {
        return static_cast<int>(numericValue(getVariable(movie(), makeName(movie().scripts.memory, name))));
    }
    static const ClipInstance* clipIn(const DisplayList& list, std::string_view name) {
        for (DisplayObject* object = list.first; object; object = object->next)
            if (const ClipInstance* clip = asClip(object); clip && name == clip->name.begin()) return clip;
        return nullptr;
    }
    const ClipInstance* clip(std::string_view name) { return clipIn(movie().root, name); }
    // What the three digits of a clip show.
    int shown(std::string_view name) {
        int number = 0;
        for (const char* digit : {"hundreds", "tens", "ones"})
            number = number * 10 + clipIn(clip(name)->children, digit)->frameIndex - 1;
        return number;
    }
    void frames(std::size_t more) { playFrames(seen().frameTimesMs.size() + more); }
    void press(KeyCode key) {
        session().keyInput(static_cast<std::uint32_t>(key));
        frames(4);
    }

    bool rockAt(int lane) {
        constexpr int closeToTheBoat = 130;
        for (const char* name : {"rock1", "rock2"})
            if (const Matrix& at = clip(name)->matrix; at.tx == firstLane + laneWidth * lane && at.ty > closeToTheBoat)
                return true;
        return false;
    }
    // One key towards the star that is lowest, but not under a rock.
    void play() {
        const ClipInstance* lowest = clip("star1");
        if (clip("star2")->matrix.ty > lowest->matrix.ty) lowest = clip("star2");
        const int lane = variable("lane"), wanted = (lowest->matrix.tx - firstLane) / laneWidth;
        const int next = lane + (wanted > lane) - (wanted < lane);
        const bool away = rockAt(lane) && (next == lane || rockAt(next));
        if (away)
            press(lane == 0 || (lane < 4 && !rockAt(lane + 1)) ? right : left);
        else if (next != lane && !rockAt(next))
            press(next > lane ? right : left);
        else
            frames(1);
    }
};

TEST(Game, IsPlayedLostAndPlayedAgain) {
    constexpr std::uint16_t title = 1, game = 2, over = 3;
    Game live(builtGame());
    live.frames(5);
    ASSERT_TRUE(live.playing());
    EXPECT_EQ(live.movie().frameIndex, title);
    live.press(left);
    EXPECT_EQ(live.variable("lane"), 2) << "keys steer in the game only";
    live.press(select);
    EXPECT_EQ(live.movie().frameIndex, game);

    constexpr int wanted = 12;  // from 10 on there are two rocks
    for (int turns = 0; turns < 3000 && live.movie().frameIndex == game && live.variable("score") < wanted; ++turns)
        live.play();
    live.frames(1);
    ASSERT_EQ(live.movie().frameIndex, game);
    EXPECT_EQ(live.variable("score"), wanted);
    EXPECT_EQ(live.shown("points"), wanted);
    EXPECT_TRUE(Game::clipIn(live.clip("hearts")->children, "heart1")->visible);

    // At the edge the boat stays and most stars fall into the sea.
    for (int i = 0; i < 6; ++i) live.press(left);
    EXPECT_EQ(live.variable("lane"), 0);
    EXPECT_EQ(live.clip("boat")->matrix.tx, firstLane);
    for (int i = 0; i < 2000 && live.playing() && live.movie().frameIndex == game; ++i) live.frames(1);
    live.frames(3);
    ASSERT_EQ(live.movie().frameIndex, over);
    EXPECT_EQ(live.variable("lives"), 0);
    const int best = live.variable("best");
    EXPECT_GE(best, wanted);
    EXPECT_EQ(live.shown("record"), best);

    live.press(select);
    EXPECT_EQ(live.movie().frameIndex, game);
    EXPECT_EQ(live.variable("score"), 0);
    EXPECT_EQ(live.variable("lives"), 3);
    EXPECT_EQ(live.variable("best"), best);
}

}  // namespace
}  // namespace qel::test
