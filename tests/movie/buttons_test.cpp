// Buttons: looks, the focus, keys that reach them. Judged by pictures: r, g, b are squares on white (.).
#include "movie/buttons.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "author/character_records.h"
#include "format/key_codes.h"
#include "movie/key_dispatch.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::move;
using author::place;

std::string shown(const Image& image) {
    std::string text = sketch(image, {{white, '.'}, {red, 'r'}, {green, 'g'}, {blue, 'b'}});
    text.pop_back();
    return text;
}

std::vector<std::string> strips(const Playback& playback) {
    std::vector<std::string> texts;
    for (const Image& image : playback.frames) texts.push_back(shown(image));
    return texts;
}
using Strips = std::vector<std::string>;

constexpr std::uint8_t key(KeyCode code) { return static_cast<std::uint8_t>(code); }

// A strip one pixel high. Squares: 10 red (up), 11 green (over), 12 blue (down). Button 20 shows them; 21 likewise.
MovieFile strip(std::uint16_t width, std::initializer_list<Bytes> records) {
    const author::ButtonLooks looks{.up = 10, .over = 11, .down = 12};
    const std::vector<author::ButtonCondition> conditions = {{.focusedKey = key(KeyCode::select), .code = Bytes{0}},
                                                             {.key = key(KeyCode::menu), .code = Bytes{0}}};
    MovieFile movie = smallMovie(width, 1,
                                 {rectangle(10, 1, 1, 1), rectangle(11, 2, 1, 1), rectangle(12, 3, 1, 1),
                                  author::button(20, looks, conditions), author::button(21, looks, {})});
    movie.records.insert(movie.records.end(), records);
    return movie;
}

Bytes placeAt(std::uint16_t id, std::uint8_t depth) {
    return author::joined({place(id, depth), move(depth, at(depth, 0))});
}

TEST(Buttons, TheFirstPlacedHasTheFocusAndItPassesOnWithoutChangingItsState) {
    const MovieFile movie =
        strip(4, {frameOf({placeAt(20, 0), placeAt(20, 1), placeAt(21, 2)}), frameOf({author::removeAt(0)}),
                  frameOf({author::removeAt(0)}), frameOf({author::removeAt(0)}), frameOf({placeAt(21, 0)})});
    EXPECT_EQ(strips(play(visFile(movie))), (Strips{"grr.", ".rr.", "..r.", "....", "g..."}));
}

TEST(Buttons, KeepOneLookForEachState) {
    LiveMovie live(visFile(strip(3, {frameOf({placeAt(20, 0)}), frameOf({})})));
    live.playFrames(1);
    ButtonInstance& button = *live.movie().buttons.first;
    EXPECT_EQ(button.state, ButtonState::over);
    ASSERT_EQ(setButtonState(live.movie(), button, ButtonState::down), Result::done);
    live.playFrames(2);
    EXPECT_EQ(shown(live.screen()), "b..");
}

TEST(Buttons, MoveTheFocusAroundAndDrawAtOnce) {
    LiveMovie live(visFile(strip(3, {frameOf({placeAt(20, 0), placeAt(20, 1), placeAt(21, 2)}), frameOf({})})));
    live.playFrames(1);
    live.playUntil(Phase::queuedActions);
    Movie& movie = live.movie();
    EXPECT_EQ(focusPrevious(movie), Result::done);
    EXPECT_EQ(focusNext(movie), Result::done);
    EXPECT_EQ(focusNext(movie), Result::done);
    EXPECT_EQ(strips(live.seen()), (Strips{"grr", "rrg", "grr", "rgr"})) << "both directions wrap";
}

TEST(Buttons, ThatGotTheFocusByARemovalAreBroughtOverByRefocusing) {
    LiveMovie live(visFile(strip(
        3, {frameOf({placeAt(20, 0), placeAt(21, 1)}), frameOf({author::removeAt(0)}), frameOf({}), frameOf({})})));
    live.playFrames(2);
    EXPECT_EQ(shown(live.screen()), ".r.") << "still up";
    EXPECT_EQ(focusCharacter(live.movie(), 21), Result::done);
    live.playFrames(3);
    EXPECT_EQ(shown(live.screen()), ".g.");
}

TEST(Buttons, ShowNothingForLooksThatAreNoPictures) {
    const Bytes morph = author::morphShape(30, 10, 11, {});
    for (const std::uint16_t over : {std::uint16_t{30}, std::uint16_t{20}, std::uint16_t{1}}) {
        const Bytes button = author::button(31, {.up = 10, .over = over, .down = 12}, {});
        EXPECT_EQ(strips(play(visFile(strip(2, {morph, button, frameOf({placeAt(31, 0)})})))), (Strips{".."})) << over;
    }
}

TEST(Buttons, OneAloneKeepsTheFocus) {
    LiveMovie live(visFile(strip(3, {frameOf({placeAt(20, 0)}), frameOf({})})));
    live.playFrames(1);
    EXPECT_EQ(focusNext(live.movie()), Result::nothing);
    live.movie().scripts.nextButtonKey = key(KeyCode::right);
    bool consumed = true;
    EXPECT_EQ(dispatchKey(live.movie(), key(KeyCode::right), consumed), Result::done);
    EXPECT_FALSE(consumed) << "a navigation key falls through to the commands";
    EXPECT_EQ(live.seen().frames.size(), 1u);
}

TEST(Buttons, NavigationKeysAreNoneUntilTheyAreSet) {
    LiveMovie live(visFile(strip(3, {frameOf({placeAt(20, 0), placeAt(20, 1)}), frameOf({})})));
    live.playFrames(1);
    live.playUntil(Phase::queuedActions);
    bool consumed = true;
    EXPECT_EQ(dispatchKey(live.movie(), 0, consumed), Result::done);
    EXPECT_FALSE(consumed);
    live.movie().scripts.previousButtonKey = key(KeyCode::left);
    EXPECT_EQ(dispatchKey(live.movie(), key(KeyCode::left), consumed), Result::done);
    EXPECT_TRUE(consumed);
    EXPECT_EQ(shown(live.screen()), "rg.");
}

TEST(Buttons, FlashWhereAConditionTakesTheKey) {
    struct Row {
        KeyCode pressed;
        Strips flashes;
    };
    for (const Row& row : {Row{KeyCode::select, {"bg.", "gg."}},  // the focused one: over, down, over
                           Row{KeyCode::menu, {"bg.", "gg."}},    // whatever the focus: the lowest that waits for it
                           Row{KeyCode::send, {}}}) {
        MovieFile file = strip(3, {frameOf({placeAt(20, 0), place(11, 1), move(1, at(1, 0))}), frameOf({})});
        LiveMovie live(visFile(file));
        live.playFrames(1);
        live.playUntil(Phase::queuedActions);
        bool consumed = false;
        ASSERT_EQ(dispatchKey(live.movie(), key(row.pressed), consumed), Result::done);
        EXPECT_EQ(consumed, !row.flashes.empty());
        Strips flashes = strips(live.seen());
        flashes.erase(flashes.begin());
        EXPECT_EQ(flashes, row.flashes) << int(row.pressed);
    }
}

TEST(Buttons, WithoutTheFocusAnswerOnlyToTheKeyThatNeedsNone) {
    const MovieFile file = strip(2, {frameOf({placeAt(21, 0), placeAt(20, 1)}), frameOf({})});
    LiveMovie live(visFile(file));
    live.playFrames(1);
    live.playUntil(Phase::queuedActions);
    bool consumed = true;
    EXPECT_EQ(dispatchKey(live.movie(), key(KeyCode::select), consumed), Result::done);
    EXPECT_FALSE(consumed);
    EXPECT_EQ(dispatchKey(live.movie(), key(KeyCode::menu), consumed), Result::done);
    EXPECT_TRUE(consumed);
    EXPECT_EQ(strips(live.seen()), (Strips{"gr", "gb", "gr"})) << "down, and then as it was";
}

TEST(Buttons, AConsumedKeyIsNotForCommandsAndTheOthersWait) {
    MovieFile file = strip(2, {frameOf({placeAt(20, 0)})});
    for (int i = 0; i < 4; ++i) file.records.push_back(frameOf({}));
    const Bytes vibrate = author::command(CommandNumber::vibrate, Bytes{253, 3});
    file.properties.commands(vibrate);
    PlayOptions options;
    for (const KeyCode code : {KeyCode::select, KeyCode::up, KeyCode::down})
        options.schedule.keys.push_back({.atMs = 30, .code = key(code)});
    const Playback playback = play(visFile(file), options);
    EXPECT_EQ(std::ranges::count(playback.deviceCalls, "vibrate 300"), 2) << "only the two that no button took";
}

TEST(Buttons, MayShowClipsAndShowNothingForWhatIsNeverShown) {
    const Bytes clip = spriteOf(30, {frameOf({place(12, 0)}), frameOf({move(0, at(1, 0))})});
    const Bytes ofClip = author::button(31, {.up = 10, .over = 30, .down = 1}, {});
    LiveMovie live(visFile(strip(3, {clip, ofClip, frameOf({placeAt(31, 0)}), frameOf({}), frameOf({}), frameOf({})})));
    live.playFrames(3);
    EXPECT_EQ(strips(live.seen()), (Strips{"b..", ".b.", "b.."})) << "the clip of a look plays on";
    ASSERT_EQ(setButtonState(live.movie(), *live.movie().buttons.first, ButtonState::down), Result::done);
    live.playFrames(4);
    EXPECT_EQ(shown(live.screen()), "...");
}

TEST(Buttons, TakeTheColoursOfTheirPlaceIntoEveryLook) {
    LiveMovie live(visFile(strip(2, {frameOf({placeAt(20, 0), author::alpha(0, 0)}), frameOf({})})));
    live.playFrames(1);
    ASSERT_EQ(setButtonState(live.movie(), *live.movie().buttons.first, ButtonState::down), Result::done);
    live.playFrames(2);
    EXPECT_EQ(strips(live.seen()), (Strips{"..", ".."}));
}

TEST(Buttons, LoseTheFocusAtAKeyFrameAndClipsBringTheirsBack) {
    const Bytes clip = spriteOf(30, {frameOf({place(20, 0), move(0, at(0, 0))}), frameOf({})});
    const Bytes placed = author::joined({author::instanceNumber(5), place(30, 0)});
    LiveMovie live(visFile(
        strip(3, {clip, frameOf({placed}), author::keyFrame(40, 1, placed), author::keyFrame(41, 2, placeAt(21, 0))})));
    live.playFrames(2);
    EXPECT_EQ(shown(live.screen()), "g..") << "the button of a clip that was found again";
    ASSERT_NE(live.movie().buttons.focused, nullptr);
    EXPECT_EQ(live.movie().buttons.first, live.movie().buttons.last);
    live.playFrames(3);
    EXPECT_EQ(live.movie().buttons.focused->characterId, 21);
}

TEST(Buttons, OfClipsThatAreGoneHaveNoFocusWhileTheClipWaitsForItsActions) {
    const Bytes clip = spriteOf(30, {frameOf({place(20, 0)})});
    const Bytes placed =
        author::placeClip({.characterId = 30, .depth = 0, .name = "", .handlers = {{.onUnload = true, .code = {1}}}});
    LiveMovie live(visFile(strip(3, {clip, frameOf({placed, placeAt(21, 1)}), frameOf({author::removeAt(0)})})));
    live.playFrames(1);
    ASSERT_TRUE(live.movie().buttons.focused);
    EXPECT_EQ(live.movie().buttons.focused->characterId, 21) << "the clip places its button behind the frame";
    ASSERT_NE(live.movie().buttons.first, live.movie().buttons.last);
    live.playUntil(Phase::play);
    live.playUntil(Phase::frameActions);
    EXPECT_NE(live.movie().waiting.first, nullptr);
    EXPECT_EQ(live.movie().buttons.first, live.movie().buttons.last);
}

TEST(Buttons, MayLoseTheOneThatWasToHaveTheFocusWithAnOldLook) {
    const Bytes look = spriteOf(30, {frameOf({place(21, 0)})});
    const Bytes outer = author::button(31, {.up = 10, .over = 30, .down = 12}, {});
    LiveMovie live(visFile(strip(3, {look, outer, frameOf({placeAt(31, 0)}), frameOf({}), frameOf({})})));
    live.playFrames(1);
    live.playUntil(Phase::queuedActions);
    ASSERT_TRUE(hasSeveral(live.movie().buttons)) << "the look of the button has placed one of its own";
    EXPECT_EQ(focusNext(live.movie()), Result::done);
    EXPECT_FALSE(hasSeveral(live.movie().buttons));
    EXPECT_EQ(live.movie().buttons.focused->characterId, 31);
}

TEST(KeyQueue, HoldsSevenAndGivesUpFromTheMiddle) {
    KeyQueue keys;
    for (std::uint8_t code = 1; code <= 8; ++code) keys.append(code);
    EXPECT_EQ(keys.count(), 7u) << "the eighth is lost";
    keys.remove(2);
    EXPECT_EQ(keys.at(1), 2);
    EXPECT_EQ(keys.at(2), 4);
    for (const int expected : {1, 2, 4, 5, 6, 7, 254}) EXPECT_EQ(keys.take(), expected);
}

TEST(KeyQueue, TheCancelKeyEndsAMovieUnlessItLoops) {
    for (const bool loop : {false, true}) {
        MovieFile file = strip(2, {frameOf({}), frameOf({}), frameOf({})});
        PlayOptions options;
        options.session.player.loop = loop;
        options.schedule.keys.push_back({.atMs = 1, .code = key(KeyCode::cancel)});
        options.mostFrames = 8;
        const Playback playback = play(visFile(file), options);
        EXPECT_EQ(playback.frames.size(), loop ? 8u : 1u);
        EXPECT_EQ(playback.finished(), !loop);
    }
}

}  // namespace
}  // namespace qel::test
