// Commands: every one of them, which events they wait for, frame loops. Pictures: r, g, b are squares on white (.).
#include <gtest/gtest.h>

#include <algorithm>

#include "author/character_records.h"
#include "author/structures.h"
#include "format/key_codes.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::keyFrame;
using author::move;
using author::place;
using Strips = std::vector<std::string>;

constexpr std::uint8_t key1 = 129, key2 = 130, key3 = 131;
constexpr std::uint8_t anyKey = 253, unhandled = 254, everyFrame = 255;

Strips strips(const Playback& playback) {
    Strips texts;
    for (const Image& image : playback.frames) {
        texts.push_back(sketch(image, {{white, '.'}, {red, 'r'}, {green, 'g'}, {blue, 'b'}}));
        texts.back().pop_back();
    }
    return texts;
}

// A command: the event code, then the fields as bytes; u16 takes its low byte first.
Bytes run(CommandNumber number, std::uint8_t event, std::initializer_list<std::uint8_t> fields = {}) {
    Bytes body{event};
    body.insert(body.end(), fields.begin(), fields.end());
    return author::command(number, body);
}

Bytes run(CommandNumber number, std::uint8_t event, const Bytes& fields) {
    Bytes body{event};
    body.insert(body.end(), fields.begin(), fields.end());
    return author::command(number, body);
}

template <class Write>
Bytes packed(Write write) {
    author::ByteWriter writer;
    write(writer);
    return writer.take();
}
Bytes point(Point p) {
    return packed([&](author::ByteWriter& writer) { author::writePoint(writer, p); });
}
Bytes matrix(const Matrix& m) {
    return packed([&](author::ByteWriter& writer) { author::writeMatrix(writer, m); });
}

Bytes list(std::initializer_list<Bytes> commands) { return author::commands(author::joined(commands)); }

// A strip one pixel high. Squares: 10 red, 11 green, 12 blue.
MovieFile strip(std::uint16_t width, std::initializer_list<Bytes> records) {
    MovieFile movie = smallMovie(width, 1, {rectangle(10, 1, 1, 1), rectangle(11, 2, 1, 1), rectangle(12, 3, 1, 1)});
    movie.records.insert(movie.records.end(), records);
    return movie;
}

// A frame that places a square at a column.
Bytes squareAt(std::uint16_t id, std::int16_t x) { return author::joined({place(id, 0), move(0, at(x, 0))}); }

PlayOptions pressing(std::initializer_list<std::pair<std::uint64_t, std::uint8_t>> keys, std::size_t frames = 30) {
    PlayOptions options;
    for (const auto& [ms, code] : keys) options.schedule.keys.push_back({.atMs = ms, .code = code});
    options.mostFrames = frames;
    return options;
}

// Vibrations tell which commands ran: each has a number of its own.
Bytes tell(std::uint8_t event, std::uint8_t number) { return run(CommandNumber::vibrate, event, {number}); }
std::string told(const Playback& playback) {
    std::string numbers;
    for (const std::string& call : playback.deviceCalls)
        if (call.starts_with("vibrate ")) numbers += call.substr(8, call.size() - 10) + " ";
    return numbers;
}

TEST(CommandEvents, MatchTheirKeyOrAnyAndTheDefaultOnlyWhenNothingElseDoes) {
    struct Row {
        std::uint8_t pressed;
        std::string runs;
    };
    for (const Row& row : {Row{key1, "1 2 5 "}, Row{key2, "2 6 "}, Row{key3, "2 "}}) {
        MovieFile file = strip(1, {frameOf({list({tell(key1, 5), tell(key2, 6), tell(unhandled, 7)})}), frameOf({})});
        file.properties.commands(author::joined({tell(key1, 1), tell(anyKey, 2), tell(unhandled, 3)}));
        EXPECT_EQ(told(play(visFile(file), pressing({{1, row.pressed}}))), row.runs) << int{row.pressed};
    }
    MovieFile file = strip(1, {frameOf({list({tell(key1, 5), tell(unhandled, 7)})}), frameOf({})});
    file.properties.commands(author::joined({tell(key1, 1), tell(unhandled, 3)}));
    EXPECT_EQ(told(play(visFile(file), pressing({{1, key2}}))), "3 7 ");
}

TEST(CommandEvents, OfEveryFrameRunGlobalOnesFirstAndThoseOfAFrameOnlyInIt) {
    MovieFile file = strip(1, {frameOf({list({tell(everyFrame, 2)})}), frameOf({}), frameOf({})});
    file.properties.commands(tell(everyFrame, 1));
    EXPECT_EQ(told(play(visFile(file))), "1 2 1 1 ");
    MovieFile stopped = strip(1, {frameOf({list({run(CommandNumber::stop, everyFrame), tell(everyFrame, 2)})})});
    EXPECT_EQ(told(play(visFile(stopped), pressing({}, 5))), "2 ") << "none while the timeline is stopped";
}

TEST(CommandEvents, WithoutAnEventCodeACommandIsPassedOver) {
    const Bytes empty{static_cast<std::uint8_t>(unsigned(CommandNumber::requestStop) << 2 | 3), 0};
    const MovieFile file = strip(1, {frameOf({author::commands(author::joined({empty, tell(everyFrame, 4)}))})});
    EXPECT_EQ(told(play(visFile(file))), "4 ");
}

TEST(Commands, StopAndPlayTheTimelineWhileClipsPlayOn) {
    const Bytes clip = spriteOf(20, {frameOf({squareAt(12, 0)}), frameOf({move(0, at(1, 0))})});
    const MovieFile file = strip(
        3,
        {clip, frameOf({place(20, 0), place(10, 1), move(1, at(2, 0)), list({run(CommandNumber::stop, everyFrame)})}),
         frameOf({author::removeAt(1), list({})})});
    const Playback stopped = play(visFile(file), pressing({}, 4));
    EXPECT_EQ(strips(stopped), (Strips{"b.r", ".br", "b.r", ".br"}));
    MovieFile played = file;
    played.properties.commands(run(CommandNumber::play, key1));
    EXPECT_EQ(strips(play(visFile(played), pressing({{35, key1}}))), (Strips{"b.r", ".br", "b.."}));
}

TEST(Commands, EndPlaybackWithWhatTheHostIsAskedFor) {
    struct Row {
        Bytes commands;
        FinishReason reason;
        std::string text;
    };
    const Bytes number = author::textCommand(CommandNumber::callNumber, everyFrame, "555-0100");
    const Bytes first = author::textCommand(CommandNumber::openUrl, everyFrame, "http://example.invalid/1");
    const Bytes second = author::textCommand(CommandNumber::openUrl, everyFrame, "http://example.invalid/2");
    for (const Row& row :
         {Row{run(CommandNumber::requestStop, everyFrame), FinishReason::end, ""},
          Row{number, FinishReason::callNumber, "555-0100"},
          Row{author::joined({first, number, second}), FinishReason::openAddress, "http://example.invalid/2"}}) {
        const MovieFile file = strip(1, {frameOf({author::commands(row.commands)}), frameOf({})});
        PlayOptions options;
        options.session.player.loop = true;
        const Playback playback = play(visFile(file), options);
        EXPECT_TRUE(playback.finished());
        EXPECT_EQ(playback.frames.size(), 1u);
        EXPECT_EQ(playback.ending.reason, static_cast<std::uint32_t>(row.reason));
        EXPECT_EQ(playback.ending.text, row.text);
        EXPECT_EQ(playback.blocksLeft, 0);
    }
}

TEST(Commands, GoToKeyFrames) {
    // Frames: r at 0, key frame 40 g at 1, b at 2, then back to 40 by a command.
    const MovieFile file = strip(
        4, {frameOf({squareAt(10, 0)}), keyFrame(40, 1, squareAt(11, 1)), frameOf({place(12, 1), move(1, at(2, 0))}),
            frameOf({list({run(CommandNumber::gotoKeyFrame, everyFrame, {40, 0}), tell(everyFrame, 1)})})});
    const Playback playback = play(visFile(file), pressing({}, 7));
    EXPECT_EQ(strips(playback), (Strips{"r...", ".g..", ".gb.", ".gb.", ".g..", ".gb.", ".gb."}));
    EXPECT_EQ(told(playback), "") << "a goto ends the dispatch";
    for (const std::uint8_t unknown : {std::uint8_t{10}, std::uint8_t{41}, std::uint8_t{255}}) {
        const MovieFile lost = strip(
            1, {keyFrame(40, 0, squareAt(11, 0)),
                frameOf({list({run(CommandNumber::gotoKeyFrame, everyFrame, {unknown, 0}), tell(everyFrame, 1)})})});
        EXPECT_EQ(told(play(visFile(lost), pressing({}, 7))), "1 ") << "no such key frame: " << int{unknown};
    }
}

TEST(Commands, GoToTheFirstKeyFrameAndStopThere) {
    const MovieFile file =
        strip(3, {frameOf({squareAt(10, 0)}), keyFrame(40, 1, squareAt(11, 1)), keyFrame(41, 2, squareAt(12, 2)),
                  frameOf({list({run(CommandNumber::gotoFirstKeyFrame, everyFrame)})})});
    EXPECT_EQ(strips(play(visFile(file), pressing({}, 7))), (Strips{"r..", ".g.", "..b", "..b", ".g.", ".g.", ".g."}));
}

TEST(Commands, AKeyFrameDefinedLaterIsReadWhenItIsGoneTo) {
    const MovieFile file =
        strip(2, {frameOf({squareAt(10, 0), list({run(CommandNumber::gotoKeyFrame, everyFrame, {41, 0})})}),
                  frameOf({author::removeAt(0)}), keyFrame(41, 2, squareAt(11, 1)), frameOf({})});
    EXPECT_EQ(strips(play(visFile(file))), (Strips{"r.", ".g", ".g"}));
}

TEST(Commands, LoopFramesAsOftenAsTheCountSays) {
    struct Row {
        std::uint8_t count;
        std::size_t passes;
    };
    for (const Row& row : {Row{1, 1}, Row{3, 3}, Row{0, 256}}) {
        // The loop: key frame 40 and the frame behind it; afterwards key frame 41.
        const MovieFile file =
            strip(3, {frameOf({list({run(CommandNumber::frameLoop, everyFrame, {40, 0, 2, 0, row.count, 41, 0})})}),
                      keyFrame(40, 1, squareAt(10, 0)), frameOf({move(0, at(1, 0))}), frameOf({}),
                      keyFrame(41, 4, squareAt(11, 2))});
        const Playback playback = play(visFile(file), pressing({}, 2000));
        ASSERT_TRUE(playback.finished());
        const Strips shown = strips(playback);
        EXPECT_EQ(std::ranges::count(shown, "r.."), std::ptrdiff_t(row.passes)) << int{row.count};
        EXPECT_EQ(std::ranges::count(shown, ".r."), std::ptrdiff_t(row.passes));
        EXPECT_EQ(shown.size(), 1 + 2 * row.passes + 1) << "frame 3 is passed over";
        EXPECT_EQ(shown.back(), "..g");
    }
}

TEST(Commands, OnlyOneFrameLoopIsActive) {
    const MovieFile file = strip(
        3, {frameOf({list({run(CommandNumber::frameLoop, everyFrame, {40, 0, 1, 0, 2, 41, 0})})}),
            keyFrame(40, 1,
                     author::joined({squareAt(10, 0),
                                     list({run(CommandNumber::frameLoop, everyFrame, {41, 0, 1, 0, 9, 40, 0})})})),
            keyFrame(41, 2, squareAt(11, 2))});
    EXPECT_EQ(strips(play(visFile(file), pressing({}, 20))), (Strips{"...", "r..", "r..", "..g"}));
}

TEST(Commands, ScrollAndZoomTheView) {
    const Bytes red10 = squareAt(10, 1);
    struct Row {
        const char* what;
        Bytes commands;
        std::string then;
    };
    for (const Row& row :
         {Row{"to", run(CommandNumber::scrollTo, key1, point({2, 0})), "...r...."},
          Row{"by",
              author::joined({run(CommandNumber::scrollTo, key1, point({2, 0})),
                              run(CommandNumber::scrollBy, key1, point({1, 0}))}),
              "....r..."},
          Row{"reset",
              author::joined({run(CommandNumber::scrollTo, key1, point({2, 0})), run(CommandNumber::resetView, key1)}),
              ".r......"},
          // Scale 2: the middle, (8 + 1) / 2 = 4, stays; column 1 goes to 2 - 4.
          Row{"zoom",
              author::joined({run(CommandNumber::zoom, key1, {16}), run(CommandNumber::scrollBy, key1, point({4, 0}))}),
              "..rr...."},
          Row{"zoom too far", run(CommandNumber::zoom, key1, {0x80}), ".r......"}}) {
        MovieFile file = smallMovie(8, 1, {rectangle(10, 1, 1, 2), frameOf({red10}), frameOf({})});
        file.properties.commands(row.commands);
        EXPECT_EQ(strips(play(visFile(file), pressing({{1, key1}}))).back(), row.then) << row.what;
    }
}

TEST(Commands, ChangeTheirTarget) {
    const auto select = [](std::uint16_t id, std::uint8_t position) {
        return run(CommandNumber::selectTarget, key1,
                   {static_cast<std::uint8_t>(id), static_cast<std::uint8_t>(id >> 8), position});
    };
    struct Row {
        const char* what;
        Bytes commands;
        std::string then;
    };
    for (const Row& row :
         {Row{"set its matrix", author::joined({select(11, 1), run(CommandNumber::setMatrix, key1, matrix(at(3, 0)))}),
              "r..g"},
          Row{"any character",
              author::joined({select(65535, 0), run(CommandNumber::setMatrix, key1, matrix(at(3, 0)))}), ".g.r"},
          Row{"another character",
              author::joined({select(10, 1), run(CommandNumber::setMatrix, key1, matrix(at(3, 0)))}), "rg.."},
          Row{"remove it",
              author::joined(
                  {select(65535, 0), run(CommandNumber::removeTarget, key1), run(CommandNumber::removeTarget, key1)}),
              ".g.."},
          Row{"move it by",
              author::joined({select(65535, 1), run(CommandNumber::moveBy, key1, matrix({.tx = 1, .ty = 0})),
                              run(CommandNumber::moveBy, key1, matrix({.tx = 1, .ty = 0}))}),
              "r..g"},
          Row{"scale it",
              author::joined(
                  {select(65535, 1), run(CommandNumber::moveBy, key1, matrix({.a = 2 * fixedOne, .d = fixedOne}))}),
              "rgg."},
          Row{"place below it",
              author::joined(
                  {select(11, 1),
                   run(CommandNumber::placeTarget, key1, author::joined({Bytes{12, 0, 1}, matrix(at(3, 0))})),
                   run(CommandNumber::setMatrix, key1, matrix(at(2, 0)))}),
              "r.gb"},
          Row{"place on top",
              run(CommandNumber::placeTarget, key1, author::joined({Bytes{12, 0, 200}, matrix(at(0, 0))})), "bg.."},
          Row{"its alpha", author::joined({select(65535, 0), run(CommandNumber::alpha, key1, {0})}), ".g.."},
          Row{"no target", run(CommandNumber::setMatrix, key1, matrix(at(3, 0))), "rg.."}}) {
        MovieFile file = strip(4, {frameOf({place(10, 0), place(11, 1), move(1, at(1, 0))}), frameOf({}), frameOf({})});
        file.properties.commands(row.commands);
        const Playback playback = play(visFile(file), pressing({{1, key1}}));
        EXPECT_EQ(strips(playback).back(), row.then) << row.what;
        EXPECT_TRUE(playback.finished());
    }
}

TEST(Commands, RecolourAndFadeTheirTarget) {
    const Bytes select = run(CommandNumber::selectTarget, key1, {255, 255, 0});
    const auto pixelAfter = [&](const Bytes& commands) {
        MovieFile file = strip(1, {frameOf({place(10, 0)}), frameOf({})});
        file.properties.commands(author::joined({select, commands}));
        return play(visFile(file), pressing({{1, key1}})).frames.back().at(0, 0);
    };
    const Bytes toGreen = packed([](author::ByteWriter& writer) {
        author::writeCompactColourTransform(writer, {.redMultiplier = 0, .greenOffset = 255});
    });
    EXPECT_EQ(pixelAfter(run(CommandNumber::colourTransform, key1, toGreen)), green);
    EXPECT_EQ(
        pixelAfter(author::joined({run(CommandNumber::alpha, key1, {0}), run(CommandNumber::fade, key1, {44, 1})})),
        red)
        << "300 more than 0 is at most 255";
    EXPECT_EQ(pixelAfter(author::joined({run(CommandNumber::alpha, key1, {100}),
                                         run(CommandNumber::fade, key1, {static_cast<std::uint8_t>(-100), 255})})),
              white);
}

TEST(Commands, MoveTheFocus) {
    const author::ButtonLooks looks{.up = 10, .over = 11, .down = 12};
    MovieFile file =
        strip(3, {author::button(20, looks, {}),
                  frameOf({place(20, 0), place(20, 1), move(1, at(1, 0)), place(20, 2), move(2, at(2, 0))}),
                  frameOf({}), frameOf({})});
    file.properties.commands(
        author::joined({run(CommandNumber::focusNext, key1), run(CommandNumber::focusPrevious, key2)}));
    EXPECT_EQ(strips(play(visFile(file), pressing({{1, key1}, {2, key2}, {3, key2}}))),
              (Strips{"grr", "rgr", "grr", "rrg", "rrg", "rrg"}));
}

TEST(Commands, OfACommandButtonRunWhateverTheirEvents) {
    const Bytes commands = author::joined({tell(key3, 8), tell(everyFrame, 9)});
    const author::ButtonLooks looks{.up = 10, .over = 11, .down = 12};
    MovieFile file = strip(2, {author::commandButton(20, looks, key1, commands),
                               author::commandButton(21, {.up = 10, .over = 11, .down = 11}, key1, tell(key2, 7)),
                               frameOf({place(20, 0), place(21, 1), move(1, at(1, 0))}), frameOf({}), frameOf({})});
    file.properties.commands(author::joined({tell(anyKey, 1), run(CommandNumber::focusNext, key2)}));
    const Playback playback = play(visFile(file), pressing({{1, key1}, {2, key2}, {3, key1}}));
    EXPECT_EQ(told(playback), "1 8 9 1 1 7 ") << "the lists come first, then the focused button";
    EXPECT_EQ(strips(playback), (Strips{"gr", "br", "gr", "rg", "rg", "rg"})) << "equal looks do not flash";
}

TEST(Commands, ThatRemoveTheirOwnButtonRunToTheirEnd) {
    const Bytes commands = author::joined(
        {run(CommandNumber::selectTarget, 1, {255, 255, 0}), run(CommandNumber::removeTarget, 1), tell(1, 5)});
    const MovieFile file =
        strip(1, {author::commandButton(20, {.up = 10, .over = 10, .down = 10}, key1, commands),
                  frameOf({place(20, 0)}), author::releaseCharacters(std::vector<std::uint16_t>{20}), frameOf({})});
    const Playback playback = play(visFile(file), pressing({{1, key1}}));
    EXPECT_EQ(told(playback), "5 ");
    EXPECT_EQ(playback.blocksLeft, 0);
}

TEST(Commands, GiveTheFocusBackBehindAGoto) {
    const author::ButtonLooks looks{.up = 10, .over = 11, .down = 12};
    const Bytes both = author::joined({place(20, 0), place(21, 1), move(1, at(1, 0))});
    MovieFile file = strip(2, {author::button(20, looks, {}), author::button(21, looks, {}), keyFrame(40, 0, both),
                               frameOf({list({run(CommandNumber::focusNext, everyFrame)})}),
                               frameOf({list({run(CommandNumber::gotoKeyFrame, everyFrame, {40, 0})})})});
    const Strips shown = strips(play(visFile(file), pressing({}, 5)));
    EXPECT_EQ(shown, (Strips{"gr", "gr", "rg", "rg", "rg"})) << "the key frame is built anew with the focus on 21";
}

TEST(Commands, DrawOnlySoOftenInOneDispatch) {
    Bytes commands;
    for (int i = 0; i < 2000; ++i) {
        const Bytes one = run(CommandNumber::scrollBy, everyFrame, point({1, 0}));
        commands.insert(commands.end(), one.begin(), one.end());
    }
    const MovieFile file = strip(4, {frameOf({squareAt(10, 0), author::commands(commands)}), frameOf({})});
    const Playback playback = play(visFile(file));
    EXPECT_TRUE(playback.finished());
    EXPECT_EQ(playback.frames.size(), 2 + 256u);
    EXPECT_EQ(strips(playback).back(), "....");
}

}  // namespace
}  // namespace qel::test
