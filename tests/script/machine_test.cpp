// Action code at work: what each piece of code leaves in the variable "r".
#include "script/machine.h"

#include <gtest/gtest.h>

#include "script/conversions.h"
#include "script/scope.h"
#include "support/action_code.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::actions;
using author::place;
using Write = void (*)(ActionWriter&);

Value variable(Movie& movie, std::string_view name) { return getVariable(movie, makeName(movie.scripts.memory, name)); }

std::string textOf(Movie& movie, std::string_view name) {
    const Value value = variable(movie, name);
    return std::string(toText(movie, value).view());
}

std::string resultOf(const Bytes& code) {
    LiveMovie live(visFile(smallMovie(2, 2, {frameOf({actions(code)}), frameOf({})})));
    live.playFrames(1);
    if (!live.playing()) return "failed";
    return textOf(live.movie(), "r");
}

std::string resultOf(Write value) { return resultOf(ActionWriter().set("r", value).bytes()); }

struct Row {
    const char* expected;
    Write value;
};

void expectRows(std::initializer_list<Row> rows) {
    int number = 0;
    for (const Row& row : rows) EXPECT_EQ(resultOf(row.value), row.expected) << "row " << number++;
}

TEST(Actions, Calculate) {
    expectRows({
        {"7", [](ActionWriter& w) { w.number(3).number(4).act(Action::add); }},
        {"1", [](ActionWriter& w) { w.act(Action::push, {2}).number(1).act(Action::add); }},
        {"NaN", [](ActionWriter& w) { w.number(0).number(0).act(Action::divide); }},
        {"Infinity", [](ActionWriter& w) { w.number(5).number(0).act(Action::divide); }},
        {"-Infinity", [](ActionWriter& w) { w.number(-5).number(0).act(Action::divide); }},
        {"-1", [](ActionWriter& w) { w.number(-7).number(3).act(Action::modulo); }},
        {"NaN", [](ActionWriter& w) { w.number(7).number(0).act(Action::modulo); }},
        {"-3", [](ActionWriter& w) { w.number(-3.9).act(Action::toInteger); }},
        {"-1", [](ActionWriter& w) { w.number(-1).number(255).act(Action::bitOr); }},
        {"4294967295", [](ActionWriter& w) { w.number(-1).number(0).act(Action::bitUnsignedRightShift); }},
        {"-1", [](ActionWriter& w) { w.number(-1).number(33).act(Action::bitRightShift); }},
        {"NaN", [](ActionWriter& w) { w.get("Infinity").get("Infinity").act(Action::subtract); }},
        {"-Infinity", [](ActionWriter& w) { w.number(3).get("Infinity").act(Action::subtract); }},
        {"0", [](ActionWriter& w) { w.number(0.5).act(Action::randomNumber); }},
    });
}

TEST(Actions, Compare) {
    expectRows({
        {"true", [](ActionWriter& w) { w.text("abc").text("abd").act(Action::less2); }},
        {"undefined", [](ActionWriter& w) { w.number(2).get("NaN").act(Action::less2); }},
        {"true",
         [](ActionWriter& w) { w.constant(PushType::null).constant(PushType::undefined).act(Action::equals2); }},
        {"true", [](ActionWriter& w) { w.number(1).text("1").act(Action::equals2); }},
        {"true", [](ActionWriter& w) { w.truth(true).number(1).act(Action::equals2); }},
        {"false", [](ActionWriter& w) { w.text("1").truth(true).act(Action::equals2); }},
        {"false", [](ActionWriter& w) { w.get("NaN").get("NaN").act(Action::equals2); }},
        {"true", [](ActionWriter& w) { w.get("Math").get("Math").act(Action::equals2); }},
        {"false", [](ActionWriter& w) { w.text("yes").act(Action::logicalNot).act(Action::logicalNot); }},
        {"true", [](ActionWriter& w) { w.text("true").number(3).act(Action::logicalAnd); }},
    });
}

TEST(Actions, HandleTexts) {
    expectRows({
        {"12", [](ActionWriter& w) { w.text("1").number(2).act(Action::add2); }},
        {"2", [](ActionWriter& w) { w.text("").number(2).act(Action::add2); }},
        {"bcd", [](ActionWriter& w) { w.text("abcdef").number(2).number(3).act(Action::stringExtract); }},
        {"def", [](ActionWriter& w) { w.text("abcdef").number(4).number(-1).act(Action::stringExtract); }},
        {"65", [](ActionWriter& w) { w.text("A").act(Action::charToAscii); }},
        {"NaN", [](ActionWriter& w) { w.number(5).act(Action::asciiToChar); }},
        {"undefined", [](ActionWriter& w) { w.number(9).act(Action::asciiToChar); }},
        {"number", [](ActionWriter& w) { w.number(5).act(Action::asciiToChar).act(Action::typeOf); }},
        {"function", [](ActionWriter& w) { w.text("quit").act(Action::typeOf); }},
        {"movieclip", [](ActionWriter& w) { w.get("this").act(Action::typeOf); }},
        {"_root", [](ActionWriter& w) { w.get("this").act(Action::targetPath); }},
        {"3", [](ActionWriter& w) { w.text("abc").text("length").act(Action::getMember); }},
    });
}

TEST(Actions, TakeWhatTheStackDoesNotHoldAsUndefined) {
    EXPECT_EQ(resultOf(ActionWriter()
                           .act(Action::add)
                           .act(Action::pop)
                           .set("r",
                                [](ActionWriter& w) {
                                    w.act(Action::push, {5, 2, 2});
                                })
                           .bytes()),
              "null")
        << "the byte 2 is no truth and pushes nothing";
    EXPECT_EQ(resultOf([](ActionWriter& w) { w.act(Action::push, {4, 9}); }), "undefined");
    EXPECT_EQ(resultOf([](ActionWriter& w) { w.act(Action::push, {8, 3}); }), "undefined");
}

TEST(Actions, KnowConstantPools) {
    const Bytes pool{3, 1, 'a', 'b', 0, 7, 'x', 0, 'c', 0};
    EXPECT_EQ(
        resultOf(ActionWriter()
                     .act(Action::constantPool, pool)
                     .set("r",
                          [](ActionWriter& w) {
                              w.act(Action::push, {8, 0, 8, 1, 8, 2}).act(Action::stringAdd).act(Action::stringAdd);
                          })
                     .bytes()),
        "abNot supported stringc");
}

TEST(Actions, JumpAndBranch) {
    // i = 0; do { i = i + 1 } while (i < 5); r = i
    ActionWriter loop;
    loop.set("i", [](ActionWriter& w) { w.number(0); });
    const std::size_t top = loop.size();
    loop.set("i", [](ActionWriter& w) { w.get("i").act(Action::increment); });
    loop.get("i").number(5).act(Action::less2);
    constexpr int branchBytes = 5;
    loop.jump(Action::branchIf, static_cast<int>(top) - static_cast<int>(loop.size()) - branchBytes);
    EXPECT_EQ(resultOf(loop.set("r", [](ActionWriter& w) { w.get("i"); }).bytes()), "5");
    for (const int outside : {1000, -1000})
        EXPECT_EQ(resultOf(ActionWriter()
                               .set("r", [](ActionWriter& w) { w.number(1); })
                               .jump(Action::jump, outside)
                               .set("r", [](ActionWriter& w) { w.number(2); })
                               .bytes()),
                  "1")
            << "a jump outside ends the code";
}

TEST(Actions, ThatLoopForEverEndPlayback) {
    EXPECT_EQ(resultOf(ActionWriter().jump(Action::jump, -5).bytes()), "failed");
}

TEST(Functions, HaveArgumentsLocalsAndResults) {
    const Bytes body = ActionWriter().get("a").get("b").act(Action::subtract).act(Action::returnValue).bytes();
    const auto withFunction = [&](Write value) {
        return resultOf(ActionWriter().function("f", {"a", "b"}, body).set("r", value).bytes());
    };
    EXPECT_EQ(withFunction([](ActionWriter& w) { w.number(2).number(10).call("f", 2); }), "8");
    EXPECT_EQ(withFunction([](ActionWriter& w) { w.number(10).call("f", 1); }), "10") << "b is undefined";
    EXPECT_EQ(withFunction([](ActionWriter& w) { w.call("g", 0); }), "undefined");
    EXPECT_EQ(withFunction([](ActionWriter& w) { w.number(1).number(2).call("f", 2).act(Action::pop).get("a"); }),
              "undefined")
        << "locals end with the call";
    EXPECT_EQ(withFunction([](ActionWriter& w) { w.get("f"); }), "function");
}

TEST(Functions, ThatCallThemselvesEndTheRunAtLevelThirty) {
    const Bytes body = ActionWriter().call("f", 0).bytes();
    EXPECT_EQ(resultOf(ActionWriter().function("f", {}, body).call("f", 0).bytes()), "failed");
}

TEST(Functions, MayBeRedefinedWhileTheyRun) {
    const Bytes second = ActionWriter().number(2).act(Action::returnValue).bytes();
    const Bytes first = ActionWriter().function("f", {}, second).number(1).act(Action::returnValue).bytes();
    EXPECT_EQ(resultOf(ActionWriter()
                           .function("f", {}, first)
                           .set("r", [](ActionWriter& w) { w.call("f", 0).call("f", 0).act(Action::stringAdd); })
                           .bytes()),
              "12");
}

TEST(Objects, AreMadeByFunctionsAndCopyTheirPrototypes) {
    ActionWriter code;
    code.function("P", {"x"}, ActionWriter().get("this").text("x").get("x").act(Action::setMember).bytes());
    code.function("m", {},
                  ActionWriter().get("this").text("x").act(Action::getMember).act(Action::returnValue).bytes());
    code.get("P").text("prototype").act(Action::getMember).text("m").get("m").act(Action::setMember);
    code.set("o", [](ActionWriter& w) { w.number(7).number(1).text("P").act(Action::newObject); });
    code.set("r", [](ActionWriter& w) { w.number(0).get("o").method("m"); });
    EXPECT_EQ(resultOf(code.bytes()), "7");
}

TEST(Objects, ThatReferToThemselvesAreFreedInTheEnd) {
    ActionWriter code;
    code.set("o", [](ActionWriter& w) { w.number(0).text("Thing").act(Action::newObject); });
    code.get("o").text("self").get("o").act(Action::setMember);
    code.set("a", [](ActionWriter& w) { w.number(0).text("Array").act(Action::newObject); });
    code.get("a").text("0").get("a").act(Action::setMember);
    code.set("t", [](ActionWriter& w) { w.get("a").act(Action::toText); });
    code.text("o").act(Action::deleteVariable).text("a").act(Action::deleteVariable);
    const Playback playback = play(visFile(smallMovie(2, 2, {frameOf({actions(code.bytes())}), frameOf({})})));
    EXPECT_TRUE(playback.finished());
    EXPECT_EQ(playback.blocksLeft, 0);
}

TEST(Classes, TextsNumbersArraysAndMath) {
    expectRows({
        {"e", [](ActionWriter& w) { w.number(1).number(1).text("Hello").method("charAt"); }},
        {"72", [](ActionWriter& w) { w.number(0).number(1).text("Hello").method("charCodeAt"); }},
        {"ef", [](ActionWriter& w) { w.number(10).number(-2).number(2).text("abcdef").method("slice"); }},
        {"cdef", [](ActionWriter& w) { w.number(100).number(2).number(2).text("abcdef").method("substr"); }},
        {"bcd", [](ActionWriter& w) { w.number(1).number(4).number(2).text("abcdef").method("substring"); }},
        {"ab", [](ActionWriter& w) { w.number(2).number(-1).number(2).text("abc").method("substring"); }},
        {"-1", [](ActionWriter& w) { w.number(2).text("b").number(2).text("abc").method("indexOf"); }},
        {"ABC", [](ActionWriter& w) { w.number(0).text("aBc").method("toUpperCase"); }},
        {"3.141592", [](ActionWriter& w) { w.get("Math").text("PI").act(Action::getMember); }},
        {"-2", [](ActionWriter& w) { w.number(-2.5).number(1).get("Math").method("round"); }},
        {"-3", [](ActionWriter& w) { w.number(-2.7).number(1).get("Math").method("round"); }},
        {"NaN", [](ActionWriter& w) { w.number(0).number(1).number(2).get("Math").method("atan2"); }},
        {"undefined", [](ActionWriter& w) { w.number(1).number(1).get("Math").method("max"); }},
        {"1,a,true", [](ActionWriter& w) { w.truth(true).text("a").number(1).number(3).act(Action::initArray); }},
        {"3",
         [](ActionWriter& w) {
             w.number(3).number(1).text("Array").act(Action::newObject).text("length").act(Action::getMember);
         }},
        {"ff",
         [](ActionWriter& w) {
             w.number(16).number(1).number(255).number(1).text("Number").act(Action::newObject).method("toString");
         }},
        {"26", [](ActionWriter& w) { w.text("0x1A").call("parseInt", 1); }},
        {"15", [](ActionWriter& w) { w.text("017").call("parseInt", 1); }},
        {"NaN", [](ActionWriter& w) { w.text("px").call("parseInt", 1); }},
        {"false", [](ActionWriter& w) { w.text("abc").call("isFinite", 1); }},
    });
}

TEST(Classes, ArraysGrowByTheirIndexes) {
    ActionWriter code;
    code.set("a", [](ActionWriter& w) { w.number(0).text("Array").act(Action::newObject); });
    code.get("a").number(4).text("x").act(Action::setMember);
    code.get("a").text("name").text("y").act(Action::setMember);
    code.text("z").number(1).get("a").method("push").act(Action::pop);
    code.set("r", [](ActionWriter& w) { w.get("a").act(Action::toText); });
    EXPECT_EQ(resultOf(code.bytes()), "undefined,undefined,undefined,undefined,x,z");
}

// --- clips

MovieFile withClip(const Bytes& code) {
    return smallMovie(40, 10,
                      {rectangle(10, 1, 8, 4), spriteOf(20, {frameOf({place(10, 0)}), frameOf({}), frameOf({})}),
                       frameOf({author::placeClip({.characterId = 20, .depth = 0, .name = "hero", .handlers = {}})}),
                       frameOf({actions(code)}), frameOf({}), frameOf({})});
}

std::string clipResult(const Bytes& code) {
    LiveMovie live(visFile(withClip(code)));
    live.playFrames(2);
    return live.playing() ? textOf(live.movie(), "r") : "failed";
}

TEST(ClipProperties, AreReadAndWritten) {
    struct PropertyRow {
        const char *name, *expected;
        double written;
    };
    for (const PropertyRow& row : {PropertyRow{"_x", "12", 12.7}, PropertyRow{"_xscale", "200", 200},
                                   PropertyRow{"_rotation", "90", 90}, PropertyRow{"_alpha", "49.803921568627", 50},
                                   PropertyRow{"_currentframe", "2", 9}, PropertyRow{"_width", "undefined", 0}}) {
        ActionWriter code;
        code.get("hero").text(row.name).number(row.written).act(Action::setMember);
        code.set("r", [&](ActionWriter& w) { w.get("hero").text(row.name).act(Action::getMember); });
        const std::string result = clipResult(code.bytes());
        if (std::string_view(row.name) == "_width")
            EXPECT_NE(result, "0") << "too small a size is ignored";
        else
            EXPECT_EQ(result.substr(0, 15), std::string(row.expected).substr(0, 15)) << row.name;
    }
}

TEST(ClipProperties, TellPathsInThreeForms) {
    EXPECT_EQ(clipResult(ActionWriter()
                             .set("r",
                                  [](ActionWriter& w) {
                                      w.get("hero").text("_target").act(Action::getMember);
                                      w.get("hero").act(Action::targetPath).act(Action::stringAdd);
                                      w.text("hero").number(11).act(Action::getProperty).act(Action::stringAdd);
                                  })
                             .bytes()),
              "/hero_level0.hero_root.hero");
}

TEST(ClipVariables, AreReachedByPathsAndTargets) {
    ActionWriter code;
    code.act(Action::setTarget, {'h', 'e', 'r', 'o', 0}).set("v", [](ActionWriter& w) { w.number(5); });
    code.act(Action::setTarget, {0}).set("v", [](ActionWriter& w) { w.number(6); });
    code.set("r", [](ActionWriter& w) {
        w.get("hero:v").get("v").act(Action::stringAdd).get("/hero:v").act(Action::stringAdd);
        w.get("nobody:v").act(Action::stringAdd);
    });
    EXPECT_EQ(clipResult(code.bytes()), "565undefined");
}

TEST(ClipMethods, GoToFramesAndStop) {
    LiveMovie live(visFile(withClip(ActionWriter().number(1).number(1).get("hero").method("gotoAndStop").bytes())));
    live.playFrames(2);
    const ClipInstance& clip = *asClip(live.movie().root.first);
    EXPECT_EQ(clip.frameIndex, 1);
    EXPECT_TRUE(clip.stopped);
}

TEST(ClipReferences, AreGoneWithTheirClips) {
    ActionWriter keep;
    keep.set("k", [](ActionWriter& w) { w.get("hero"); });
    ActionWriter use;
    use.get("k").text("_x").number(3).act(Action::setMember);
    use.number(0).get("k").method("play").act(Action::pop);
    use.set("r", [](ActionWriter& w) { w.get("k").text("_x").act(Action::getMember); });
    MovieFile movie = withClip(keep.bytes());
    movie.records.back() = frameOf({author::removeAt(0), actions(use.bytes())});
    movie.records.push_back(frameOf({}));
    LiveMovie live(visFile(movie));
    live.playFrames(4);
    EXPECT_EQ(textOf(live.movie(), "r"), "undefined");
}

TEST(ClipEvents, RunTheirCode) {
    const auto append = [](std::string_view letter) {
        return ActionWriter()
            .get("_root")
            .text("log")
            .get("_root")
            .text("log")
            .act(Action::getMember)
            .text(letter)
            .act(Action::stringAdd)
            .act(Action::setMember)
            .bytes();
    };
    const Bytes placed = author::placeClip({.characterId = 20,
                                            .depth = 0,
                                            .name = "c",
                                            .handlers = {{.onLoad = true, .code = append("l")},
                                                         {.onFrame = true, .code = append("f")},
                                                         {.onUnload = true, .code = append("u")}}});
    LiveMovie live(
        visFile(smallMovie(2, 2,
                           {spriteOf(20, {frameOf({})}),
                            frameOf({actions(ActionWriter().set("log", [](ActionWriter& w) { w.text("-"); }).bytes())}),
                            frameOf({placed}), frameOf({}), frameOf({author::removeAt(0)}), frameOf({})})));
    live.playFrames(5);
    EXPECT_EQ(textOf(live.movie(), "log"), "-lfu");
}

TEST(Machine, ForgetsEverythingWithANewPass) {
    const Bytes code = ActionWriter().set("n", [](ActionWriter& w) { w.get("n").act(Action::increment); }).bytes();
    PlayOptions options;
    options.session.player.loop = true;
    LiveMovie live(visFile(smallMovie(2, 2, {frameOf({actions(code)}), frameOf({})})), options);
    live.playFrames(5);
    EXPECT_EQ(textOf(live.movie(), "n"), "1");
}

TEST(Machine, EndsDefinedHoweverCodeIsCut) {
    ActionWriter code;
    code.function("f", {"a"}, ActionWriter().get("a").act(Action::returnValue).bytes());
    code.act(Action::constantPool, {1, 0, 'x', 0}).set("r", [](ActionWriter& w) { w.number(2).call("f", 1); });
    for (std::size_t length = 0; length < code.size(); ++length) {
        const Bytes cut(code.bytes().begin(), code.bytes().begin() + static_cast<std::ptrdiff_t>(length));
        const Playback playback = play(visFile(smallMovie(2, 2, {frameOf({actions(cut)}), frameOf({})})));
        EXPECT_EQ(playback.blocksLeft, 0) << length;
        EXPECT_NE(playback.ending.kind, Ending::Kind::none) << length;
    }
}

}  // namespace
}  // namespace qel::test
