#include <gtest/gtest.h>

#include <algorithm>

#include "author/inspect_listing_lines.h"
#include "author/source_movie.h"

namespace qel::author {
namespace {

// A movie with something for every command to name, and one command on its second frame.
std::string withCommand(std::string_view command) {
    return R"({"stage": [20, 10], "characters": {
        "dot": {"shape": [{"path": "M 0 0 H 4 V 4 Z", "fill": "#ff0000"}], "identifier": 60},
        "beep": {"sound": "80 7f", "identifier": 61}}, "frames": [
        {"key": "start", "identifier": 70, "place": {"low": {"character": "dot"}, "high": {"character": "dot"}}},
        {"label": "loop", "hold": 4, "remove": ["low"], "commands": [)" +
           std::string(command) + R"(]},
        {"key": true, "label": "end", "identifier": 71}]})";
}

// What stands behind the first key frame's items: the listing of the second frame.
std::vector<std::string> commandLines(std::string_view command) {
    std::vector<std::string> lines = listingLines(visFile(buildMovie(withCommand(command)))), found;
    auto at = std::ranges::find_if(lines, [](const std::string& line) { return line.ends_with("commands (10)"); });
    for (++at; at != lines.end() && at->find(" frame (16)") == std::string::npos; ++at) {
        const std::size_t name = at->find(' ', at->find(' ') + 1) + 1;  // behind offset and length
        found.push_back(at->substr(name));
    }
    return found;
}

TEST(SourceCommands, AreWhatTheInspectorReads) {
    const struct {
        const char *source, *listed;
    } cases[] = {
        {R"("do": "gotoKeyFrame", "keyFrame": "end")", "gotoKeyFrame (1) event 155 when select keyFrame 71"},
        {R"("do": "play")", "play (2) event 155 when select"},
        {R"("do": "gotoFirstKeyFrame")", "gotoFirstKeyFrame (3) event 155 when select"},
        {R"("do": "stop")", "stop (4) event 155 when select"},
        {R"("do": "requestStop")", "requestStop (5) event 155 when select"},
        {R"("do": "soundOff")", "soundOff (6) event 155 when select"},
        {R"("do": "soundOn")", "soundOn (7) event 155 when select"},
        {R"("do": "startSound", "sound": "beep")", "startSound (8) event 155 when select sound 61"},
        {R"("do": "stopSound", "sound": "beep")", "stopSound (9) event 155 when select sound 61"},
        {R"("do": "frameLoop", "first": "start", "last": "loop", "count": 256, "after": "end")",  // frames 1 to 4
         "frameLoop (10) event 155 when select firstKeyFrame 70 lastFrame 4 count 256 keyFrameAfter 71"},
        {R"("do": "frameLoop", "first": "start", "last": 2, "count": 3, "after": "end")",
         "frameLoop (10) event 155 when select firstKeyFrame 70 lastFrame 2 count 3 keyFrameAfter 71"},
        {R"("do": "openUrl", "url": "http://x")", "openUrl (11) event 155 when select url \"http://x\""},
        {R"("do": "vibrate", "milliseconds": 25500)", "vibrate (12) event 155 when select milliseconds 25500"},
        {R"("do": "scrollTo", "to": [-32768, 5])", "scrollTo (13) event 155 when select to (-32768, 5)"},
        {R"("do": "scrollBy", "by": [0, -1])", "scrollBy (14) event 155 when select by (0, -1)"},
        {R"("do": "resetView")", "resetView (15) event 155 when select"},
        {R"("do": "zoom", "steps": -128)", "zoom (16) event 155 when select steps -128"},
        {R"("do": "focusNext")", "focusNext (17) event 155 when select"},
        {R"("do": "focusPrevious")", "focusPrevious (18) event 155 when select"},
        {R"("do": "selectTarget", "instance": "high")",  // "low" is gone
         "selectTarget (19) event 155 when select character 60 position 0"},
        {R"("do": "selectTarget", "position": 255)",
         "selectTarget (19) event 155 when select character 65535 position 255"},
        {R"("do": "selectTarget", "character": "dot", "position": 2)",
         "selectTarget (19) event 155 when select character 60 position 2"},
        {R"("do": "placeTarget", "character": "dot", "position": 1, "x": 4, "rotate": 90)",
         "placeTarget (20) event 155 when select character 60 position 1 matrix (0, 1, -1, 0, 4, 0)"},
        {R"("do": "removeTarget")", "removeTarget (21) event 155 when select"},
        {R"("do": "ratio", "ratio": 65535)", "ratio (22) event 155 when select ratio 65535"},
        {R"("do": "colourTransform", "colour": {"redMultiplier": 0.5, "blueOffset": -9})",
         "colourTransform (23) event 155 when select redOffset 0 blueOffset -9 redMultiplier 128 blueMultiplier 256"},
        {R"("do": "setMatrix", "scaleX": 2, "y": -3)",
         "setMatrix (24) event 155 when select matrix (2, 0, 0, 1, 0, -3)"},
        // A move that does not turn must leave the turn of the target alone.
        {R"("do": "moveBy", "x": 2)", "moveBy (25) event 155 when select matrix (0, 0, 0, 0, 2, 0)"},
        {R"("do": "moveBy", "scale": 0.5)", "moveBy (25) event 155 when select matrix (0.5, 0, 0, 0.5, 0, 0)"},
        {R"("do": "alpha", "alpha": 200)", "alpha (26) event 155 when select alpha 200"},
        {R"("do": "fade", "change": -255)", "fade (27) event 155 when select change -255"},
        {R"("do": "callNumber", "number": {"hex": "31 ff"})",
         "callNumber (28) event 155 when select number \"1\\xFF\""},
    };
    for (const auto& each : cases)
        EXPECT_EQ(commandLines(R"({"on": "select", )" + std::string(each.source) + "}"),
                  std::vector<std::string>{each.listed});
}

TEST(SourceCommands, RunOnTheirEvents) {
    const struct {
        const char* on;
        std::vector<std::string> events;
    } cases[] = {
        {"\"any-key\"", {"event 253 when any-key"}},
        {"\"default\"", {"event 254 when default"}},
        {"\"every-frame\"", {"event 255 when every-frame"}},
        {"\"number-0\"", {"event 128 when number-0"}},
        {"\"reserved-9\"", {"event 169 when reserved-9"}},
        {"53", {"event 53 when key"}},
        {"[\"ok\", 133, \"end\"]", {"event 153 when ok", "event 133 when number-5", "event 147 when end"}},
    };
    for (const auto& each : cases) {
        std::vector<std::string> expected;
        for (const std::string& event : each.events) expected.push_back("play (2) " + event);
        EXPECT_EQ(commandLines("{\"do\": \"play\", \"on\": " + std::string(each.on) + "}"), expected);
    }
}

TEST(SourceCommands, SayWhatIsWrongWithThem) {
    const struct {
        const char *command, *field, *message;
    } cases[] = {
        {R"({"do": "play"})", "", "\"on\" is missing: a key, any-key, default or every-frame"},
        {R"({"on": "ok"})", "", "\"do\" is missing"},
        {R"({"on": "ok", "do": "jump"})", "/do", "there is no command \"jump\""},
        {R"({"on": "ok", "do": "play", "keyFrame": "end"})", "/keyFrame", "nothing is called \"keyFrame\" here"},
        {R"({"on": "okay", "do": "play"})", "/on",
         "\"okay\" is neither a key (select, left, number-5, a number ...) nor any-key, default or every-frame"},
        {R"({"on": 256, "do": "play"})", "/on", "a whole number from 0 to 255 belongs here"},
        {R"({"on": [], "do": "play"})", "/on", "at least one event belongs here"},
        {R"({"on": "ok", "do": "gotoKeyFrame", "keyFrame": "loop"})", "/keyFrame", "no key frame is called \"loop\""},
        {R"({"on": "ok", "do": "startSound", "sound": "dot"})", "/sound", "\"dot\" is no sound"},
        {R"({"on": "ok", "do": "frameLoop", "first": "start", "last": "far", "count": 1, "after": "end"})", "/last",
         "no frame has the label \"far\""},
        {R"({"on": "ok", "do": "frameLoop", "first": "start", "last": 6, "count": 1, "after": "end"})", "/last",
         "a whole number from 0 to 5 belongs here"},
        {R"({"on": "ok", "do": "frameLoop", "first": "start", "last": 1, "count": 0, "after": "end"})", "/count",
         "a whole number from 1 to 256 belongs here"},
        {R"({"on": "ok", "do": "vibrate", "milliseconds": 150})", "/milliseconds", "a multiple of 100 belongs here"},
        {R"({"on": "ok", "do": "scrollTo", "to": [1]})", "/to", "a point is [x, y] in pixels"},
        {R"({"on": "ok", "do": "selectTarget", "instance": "low"})", "/instance",
         "nothing called \"low\" is placed here"},
        {R"({"on": "ok", "do": "selectTarget", "instance": "high", "position": 0})", "/position",
         "an instance says all there is; character and position do not stand beside it"},
        {R"({"on": "ok", "do": "placeTarget", "character": "beep", "position": 0})", "/character",
         "\"beep\" is not to be seen; only shapes, sprites, buttons and text fields are placed"},
        {R"({"on": "ok", "do": "moveBy"})", "", "this says nothing of where to"},
    };
    for (const auto& each : cases) {
        try {
            buildMovie(withCommand(each.command));
            ADD_FAILURE() << "built: " << each.command;
        } catch (const SourceError& error) {
            EXPECT_EQ(error.field, std::string("frames/1/commands/0") + each.field) << each.command;
            EXPECT_STREQ(error.what(), each.message) << each.command;
        }
    }
    const std::string longText = R"({"on": "ok", "do": "openUrl", "url": ")" + std::string(255, 'u') + "\"}";
    EXPECT_THROW(buildMovie(withCommand(longText)), SourceError);
}

}  // namespace
}  // namespace qel::author
