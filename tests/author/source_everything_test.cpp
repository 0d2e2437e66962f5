// Sources with sounds, buttons, text fields, key frames and tables: what they say is what the inspector, which reads
// the format on its own, finds in the movie.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "author/hex.h"
#include "author/inspect_listing_lines.h"
#include "author/source_movie.h"

namespace qel::author {
namespace {

using nlohmann::json;

std::string movieWith(const std::string& fields) { return "{\"stage\": [20, 10], " + fields + "}"; }

// "dot" is character 1 and "ring" 2; they share fill 50, which is their own. `characters` are added behind them.
std::string withCharacters(const std::string& characters, const std::string& frames = "{}") {
    return movieWith(R"("characters": {
        "dot": {"shape": [{"path": "M 0 0 H 4 V 4 Z", "fill": "red"}]},
        "ring": {"shape": [{"path": "M 0 0 H 4 V 4 Z", "fill": "red"}]}, "red": {"fill": "#ff0000", "identifier": 50},
        )" + characters +
                     "}, \"frames\": [" + frames + "]");
}

// The listing of the parts that are called `part`, with the parts inside them, without offsets and lengths.
std::vector<std::string> listed(const std::string& source, const std::string& part) {
    const json movie = json::parse(inspectionJson(inspectContent(visFile(buildMovie(source))), "movie"));
    EXPECT_EQ(movie["errors"], 0) << movie.dump(1);
    EXPECT_EQ(movie["warnings"], 0) << movie.dump(1);
    std::vector<std::string> lines;
    const auto write = [&lines](const json& at, const auto& self) -> void {
        std::string line = at["name"];
        const json fields = at.value("fields", json::object()), children = at.value("children", json::array());
        for (const auto& [name, value] : fields.items()) line += " " + name + " " + value.dump();
        lines.push_back(line);
        for (const json& child : children) self(child, self);
    };
    for (const json& at : movie["parts"])
        if (at["name"] == part) write(at, write);
    return lines;
}

using Lines = std::vector<std::string>;

TEST(SourceCharacters, AreWhatTheInspectorReads) {
    const struct {
        const char *part, *source;
        Lines lines;
    } cases[] = {
        {"sound",
         R"("x": {"sound": "80 7F\n00", "format": 10, "rateCode": 3, "flag2": true, "sampleValue": 8000,
                  "channelValue": 9})",
         {"sound channelValue 9 dataBytes 3 flag1 false flag2 true format 10 identifier 3 rateCode 3 sampleValue "
          "8000"}},
        {"button",
         R"("x": {"button": {"up": "dot", "over": "ring"}, "conditions": [
                {"focusLost": true, "focusGained": true, "code": "Stop"},
                {"focusedKey": "ok", "key": 53, "code": ["Play", "Stop"]}, {"key": "left", "code": ""}]})",
         {"button downCharacter 2 identifier 3 overCharacter 2 upCharacter 1",
          "condition actionBytes 1 actions 1 when \"focusLost focusGained\"",
          "condition actionBytes 2 actions 2 focusedKey 153 focusedKeyName \"ok\" key 53 when \"keyWhileFocused key\"",
          "condition actionBytes 0 actions 0 key 148 keyName \"left\" when \"key\""}},
        {"commandButton",
         R"("x": {"commandButton": {"up": "dot", "over": null, "down": "t"}, "key": "select", "commands": [
                {"do": "stop"}, {"on": "up", "do": "focusNext"}]},
            "t": {"textField": [0, 0, 9, 9]})",
         {"commandButton downCharacter 4 identifier 3 key 155 keyName \"select\" overCharacter 65535 upCharacter 1",
          "stop event 253 when \"any-key\"", "focusNext event 150 when \"up\""}},
        {"textField",
         R"("x": {"textField": [-1, 2, 30, 12], "text": "hi", "variable": "score", "extraValue": 515,
                  "values": [1, 2, 3], "value4": 4, "colour": "#ff8000", "flags": 32769})",
         {"textField bounds [-1,2,30,12] colour 64512 extraValue 515 flags 33537 identifier 3 text \"hi\" value4 4 "
          "values [1,2,3] variable \"score\""}},
        {"textField",
         R"("x": {"textField": [0, 0, 0, 0], "text": {"hex": "b0a1"}})",
         {"textField bounds [0,0,0,0] colour 0 flags 0 identifier 3 text \"\u00b0\u00a1\" value4 0 values [0,0,0]"}},
        {"compressionTable",
         R"("x": {"compressionTable": "aabbcc", "identifier": 9})",
         {"compressionTable identifier 9 tableBytes 3"}},
    };
    for (const auto& each : cases) EXPECT_EQ(listed(withCharacters(each.source), each.part), each.lines);
}

// A sprite with all that its head can hold. Its blocks lie where the frames' action items are.
TEST(SourceCharacters, WriteSpritesWithTablesThatPointAtTheirFrames) {
    const std::string source = withCharacters(R"("x": {"keyFrameList": ["out", 0], "sprite": [
        {"key": true, "identifier": 40, "label": "in", "place": {"a": {"character": "dot"}}},
        {"label": "out", "alpha": {"a": 9}, "actions": [["Play"], {"hex": "07"}], "callable": true}]})");
    EXPECT_EQ(listed(source, "sprite"),
              (Lines{"sprite blockIdentifiers [1] blockLengths [4] blockOffsets [19] blocks 1 frameCount 2 headLength "
                     "44 identifier 3 keyFrameCount 1 keyFrames [0,1] labels 2",
                     "label frame 0 label \"in\"", "label frame 1 label \"out\"",
                     "frame cacheIdentifier 40 cached true frameNumber 0 index 0", "place character 1 depth 0",
                     "frame cached false index 1", "alpha alpha 9 depth 0", "actions actionBytes 1 actions 1",
                     "actions actionBytes 1 actions 1"}));
    // The first frame takes 11 bytes; the second's header 5 and its alpha item 3.
}

TEST(SourceFrames, HoldEveryItem) {
    const std::string source = withCharacters(R"("beep": {"sound": "80"}, "s": {"sprite": [{}]})",
                                              R"({"place": {"a": {"character": "dot", "number": 7},
                      "c": {"character": "s", "name": "ship", "number": 1,
                            "handlers": [{"on": ["load", "event5"], "code": "Stop"}, {"on": "every-frame", "code": {"hex": "06 07"}}]},
                      "d": {"character": "s"}},
            "ratio": {"a": 300}, "colour": {"a": {"redOffset": 3}}, "alpha": {"a": 77},
            "stopSound": "beep", "startSound": ["beep", "beep"], "volume": 55, "purgeOrderUpdate": {"beep": 2},
            "commands": [{"on": "ok", "do": "play"}], "actions": "Stop"})");
    EXPECT_EQ(listed(source, "frame"),
              (Lines{"frame cached false index 0",
                     "instanceNumber number 7",
                     "place character 1 depth 0",
                     "instanceNumber number 1",
                     "placeClip character 4 depth 1 events \"load every-frame event5\" name \"ship\"",
                     "handler actionBytes 1 actions 1 events \"load event5\"",
                     "handler actionBytes 2 actions 2 events \"every-frame\"",
                     "move depth 1 matrix [1,0,0,1,0,0]",
                     "instanceNumber number 2",  // 1 is given away
                     "place character 4 depth 2",
                     "move depth 2 matrix [1,0,0,1,0,0]",
                     "ratio depth 0 ratio 300",
                     "colour depth 0 redOffset 3",
                     "alpha alpha 77 depth 0",
                     "volume volume 55",
                     "stopSound sound 3",
                     "startSound sound 3",
                     "startSound sound 3",
                     "purgeOrderUpdate characters [3] positions [2]",
                     "commands",
                     "play event 153 when \"ok\"",
                     "actions actionBytes 1 actions 1"}));
}

// A jump to a key frame repeats what belongs to its instances, in an order that gives the same picture: a colour
// transform takes back the alpha before it. What happens only once, such as sounds, stands in its own frame alone.
TEST(SourceFrames, RebuildWhatInstancesHaveInKeyFrames) {
    const std::string source = withCharacters(
        R"("beep": {"sound": "80"}, "s": {"sprite": [{}]})",
        R"({"place": {"a": {"character": "dot"}, "b": {"character": "ring"}, "c": {"character": "s", "name": "n"}},
            "startSound": "beep", "ratio": {"a": 5}, "alpha": {"a": 10, "b": 20}},
           {"colour": {"a": {"redOffset": 1}, "b": {"redOffset": 2}}, "key": true}, {"alpha": {"b": 30}},
           {"key": "k", "volume": 9})");
    const Lines lines = listed(source, "frame");
    const auto first = std::ranges::find(lines, "frame cacheIdentifier 5 cached true frameNumber 1 index 1");
    const auto last = std::ranges::find(lines, "frame cacheIdentifier 6 cached true frameNumber 3 index 3");
    ASSERT_TRUE(first != lines.end() && last != lines.end());
    const Lines clip{"instanceNumber number 1", "placeClip character 4 depth 2 name \"n\"",
                     "move depth 2 matrix [1,0,0,1,0,0]"};
    Lines expected{"place character 1 depth 0", "ratio depth 0 ratio 5", "colour depth 0 redOffset 1",
                   "place character 2 depth 1", "colour depth 1 redOffset 2"};
    expected.insert(expected.end(), clip.begin(), clip.end());
    EXPECT_EQ(Lines(first + 1, first + 9), expected);
    expected.insert(expected.begin() + 5, "alpha alpha 30 depth 1");
    expected.push_back("volume volume 9");
    EXPECT_EQ(Lines(last + 1, lines.end()), expected);
}

TEST(SourceMovie, HoldsEveryRecordBesideTheFrames) {
    const std::string source = movieWith(R"("commands": [{"on": "end", "do": "requestStop"}],
        "keyFrameList": [2, "in", 2], "purgeOrder": ["b", "a"], "nameTable": {"ding": "a"}, "directory": true,
        "characters": {"a": {"sound": "80"}, "b": {"sound": "7f", "identifier": 12}},
        "frames": [{"key": "top", "label": "in"}, {"release": ["a"], "purgeOrder": ["a"], "background": "#0000ff"},
                   {"actions": [["Play"], ["Stop", "Stop"]], "callable": true, "startSound": "a"}])");
    const MovieFile movie = buildMovie(source);
    const Bytes file = visFile(movie);
    const std::size_t actionsAt = file.size() - 7;  // in front of the end record
    EXPECT_EQ(hex(std::span(file).subspan(actionsAt)), "e1 06 e2 07 07 fe 00");
    EXPECT_FALSE(movie.scanDefinitions);
    // The inspector compares the directory with the definitions that it meets.
    EXPECT_EQ(listed(source, "characterDirectory").size(), 4u);
    EXPECT_EQ(listed(source, "blockTable").at(1),
              "block blockLength 5 blockOffset " + std::to_string(actionsAt) + " identifier 2");
    const std::pair<const char*, Lines> expected[] = {
        {"nameTable", {"nameTable count 1", "characterName character 1 name \"ding\""}},
        {"movieProperties",
         {"movieProperties", "frameCount frameCount 3", "frameDuration frameDuration 50", "commands",
          "requestStop event 147 when \"end\"", "frameLabels count 1", "label frame 0 label \"in\"",
          "keyFrameIndex count 1", "keyFrame frame 0 identifier 2", "dictionarySize dictionarySize 13"}},
        {"keyFrameList", {"keyFrameList frames [0,2]"}},
        {"purgeOrder", {"purgeOrder count 2 identifiers [12,1]", "purgeOrder count 1 identifiers [1]"}},
        {"backgroundColour", {"backgroundColour colour 31 format \"rgb565\""}},
        {"releaseCharacters", {"releaseCharacters identifiers [1]"}},
    };
    for (const auto& [part, lines] : expected) EXPECT_EQ(listed(source, part), lines);
}

// Identifiers that the source gives are left out when others are handed out; a fill on top still gets a higher one.
TEST(SourceMovie, GivesIdentifiersAroundThoseThatTheSourceGives) {
    const std::string source = movieWith(R"("characters": {
        "base": {"fill": "#00ff00", "identifier": 900}, "a": {"sound": "80"}, "b": {"sound": "80", "identifier": 2},
        "x": {"shape": [{"path": "M 0 0 H 9 V 9 Z", "fill": "base"}, {"path": "M 0 0 H 4 V 4 Z", "fill": "#ff0000"}]},
        "c": {"sprite": [{"key": true, "identifier": 5}, {"key": true}]}},
        "frames": [{"key": true, "identifier": 4}, {"key": true}])");
    const auto identifiersOf = [&source](const char* part, const char* field) {
        const json movie = json::parse(inspectionJson(inspectContent(visFile(buildMovie(source))), "movie"));
        std::vector<int> ids;
        const auto collect = [&](const json& at, const auto& self) -> void {
            if (at["name"] == part && at["fields"].contains(field)) ids.push_back(at["fields"][field]);
            if (at.contains("children"))
                for (const json& child : at["children"]) self(child, self);
        };
        for (const json& at : movie["parts"]) collect(at, collect);
        return ids;
    };
    using Ids = std::vector<int>;
    EXPECT_EQ(identifiersOf("sound", "identifier"), (Ids{1, 2}));
    EXPECT_EQ(identifiersOf("shape", "identifier"), Ids{3});
    EXPECT_EQ(identifiersOf("solidFill", "identifier"), (Ids{900, 901}));
    EXPECT_EQ(identifiersOf("sprite", "identifier"), Ids{6});
    EXPECT_EQ(identifiersOf("frame", "cacheIdentifier"), (Ids{5, 8, 4, 7}));  // the sprite's, then the movie's
}

TEST(SourceFiles, AreReadBesideTheSourceOnly) {
    const auto readFile = [](const std::string& name) -> std::optional<Bytes> {
        if (name == "sounds/beep.raw") return Bytes{1, 2, 3};
        return std::nullopt;
    };
    const auto withFile = [](const std::string& name) {
        return movieWith(R"("characters": {"x": {"sound": {"file": ")" + name + R"("}}}, "frames": [{}])");
    };
    const MovieFile movie = buildMovie(withFile("sounds/beep.raw"), readFile);
    EXPECT_EQ(hex(movie.records.at(0)), "26 09 00 00 00 01 00 00 00 00 00 01 02 03");
    const struct {
        const char *name, *message;
    } cases[] = {
        {"missing.raw", "\"missing.raw\" cannot be read"},
        {"", "\"\" is no file beside the source"},
        {"/sounds/beep.raw", "\"/sounds/beep.raw\" is no file beside the source"},
        {"../beep.raw", "\"../beep.raw\" is no file beside the source"},
        {"sounds/../../beep.raw", "\"sounds/../../beep.raw\" is no file beside the source"},
    };
    for (const auto& each : cases) {
        try {
            buildMovie(withFile(each.name), readFile);
            ADD_FAILURE() << each.name;
        } catch (const SourceError& error) {
            EXPECT_STREQ(error.what(), each.message);
            EXPECT_EQ(error.field, "characters/x/sound/file");
        }
    }
    EXPECT_THROW(buildMovie(withFile("sounds/beep.raw")), SourceError) << "no files at all";
}

TEST(SourceErrors, NameWhatIsWrongWithCharactersAndTables) {
    const std::string tooMany = [] {
        std::string list;
        for (int i = 0; i < 123; ++i) list += std::string(i ? "," : "") + R"({"do": "stop"})";
        return list;
    }();
    const struct {
        std::string source, field, message;
    } cases[] = {
        {withCharacters(R"("x": {"sound": "8"})"), "characters/x/sound",
         "pairs of hexadecimal digits belong here, not \"8\" at character 1"},
        {withCharacters(R"("x": {"sound": "80 7g"})"), "characters/x/sound",
         "pairs of hexadecimal digits belong here, not \"7g\" at character 4"},
        {withCharacters(R"("x": {"sound": "", "format": 16})"), "characters/x/format",
         "a whole number from 0 to 15 belongs here"},
        {withCharacters(R"("x": {"button": {"over": "dot"}})"), "characters/x/button", "\"up\" is missing"},
        {withCharacters(R"("x": {"button": {"up": "red"}})"), "characters/x/button/up",
         "\"red\" is not to be seen; only shapes, sprites, buttons and text fields are placed"},
        {withCharacters(R"("x": {"button": {"up": "x"}})"), "characters/x/button/up",
         "\"x\" is a button; buttons show shapes, sprites and text fields"},
        {withCharacters(R"("x": {"button": {"up": "dot"}, "conditions": [{"code": ""}]})"), "characters/x/conditions/0",
         "a condition names at least one of focusLost, focusGained, focusedKey, key"},
        {withCharacters(R"("x": {"commandButton": {"up": "dot"}, "key": "any-key", "commands": []})"),
         "characters/x/key", "\"any-key\" is no key (select, left, number-5, a number ...)"},
        {withCharacters(R"("x": {"commandButton": {"up": "dot"}, "key": 1, "commands": [)" + tooMany + "]}"),
         "characters/x/commands", "too large for the format: these commands take 246 bytes, of at most 245"},
        {withCharacters(R"("x": {"commandButton": {"up": "dot"}, "key": 1, "commands": [
            {"do": "selectTarget", "instance": "a"}]})"),
         "characters/x/commands/0/instance", "instances are known in the movie's frames only; write a position"},
        {withCharacters(R"("x": {"button": {"up": "s"}}, "s": {"sprite": [{"place": {"i": {"character": "x"}}}]})"),
         "characters/s", "sprites stand in one another 64 deep here; does one hold itself?"},
        {withCharacters(R"("x": {"textField": [5, 0, 4, 9]})"), "characters/x/textField/2",
         "a whole number from 5 to 32767 belongs here"},
        {withCharacters(R"("x": {"textField": [0, 0, 4, 9], "flags": 512})"), "characters/x/flags",
         "bits 256 and 512 say that extraValue and variable are there; they set themselves"},
        {withCharacters(R"("x": {"textField": [0, 0, 4, 9], "text": ")" + std::string(256, 'a') + "\"}"),
         "characters/x/text", "a text of at most 255 bytes belongs here; this has 256"},
        {withCharacters(R"("x": {"compressionTable": ")" + std::string(2 * 2074, '0') + "\"}"), "characters/x",
         "too large for the format: this takes 2079 bytes, of at most 2078"},
        {withCharacters(R"("x": {"sprite": [{"label": ")" + std::string(40, 'l') + "\"}]}"), "characters/x/sprite",
         "the label \"llllllllllllllllllll...\" has more than 39 bytes"},
        {withCharacters(R"("x": {"sprite": [{"release": ["dot"]}]})"), "characters/x/sprite/0/release",
         "this belongs into the movie's own frames, not into a sprite's"},
        {withCharacters(R"("x": {"sprite": [{}], "keyFrameList": [1]})"), "characters/x/keyFrameList/0",
         "a whole number from 0 to 0 belongs here"},
        {withCharacters(R"("x": {"sound": "80", "identifier": 50})"), "characters/x/identifier",
         "this identifier is given twice"},
        {withCharacters(R"("x": {"sound": "80", "identifier": 65535})"), "characters/x/identifier",
         "a whole number from 1 to 65534 belongs here"},
        {movieWith(R"("nameTable": {"a": "b"}, "frames": [{}])"), "nameTable/a", "no character is called \"b\""},
        {movieWith(R"("commands": [{"on": "ok", "do": "gotoKeyFrame", "keyFrame": "a"}], "frames": [{"label": "a"}])"),
         "commands/0/keyFrame", "no key frame is called \"a\""},
    };
    for (const auto& each : cases) {
        try {
            buildMovie(each.source);
            ADD_FAILURE() << "built: " << each.source.substr(0, 400);
        } catch (const SourceError& error) {
            EXPECT_EQ(error.field, each.field) << error.what();
            EXPECT_EQ(error.what(), each.message);
        }
    }
}

TEST(SourceErrors, NameWhatIsWrongWithAFrame) {
    const struct {
        const char *frames, *field, *message;
    } cases[] = {
        {R"({"key": 1})", "frames/0/key", "true, or a name for the key frame, belongs here"},
        {R"({"identifier": 9})", "frames/0/identifier", "only key frames have an identifier"},
        {R"({"key": "k"}, {"key": true, "label": "k"})", "frames/1/label", "a key frame before is called \"k\""},
        {R"({"label": "k"}, {"label": "k"})", "frames/1/label", "the label \"k\" stands at a frame before"},
        {R"({"callable": true})", "frames/0/callable", "a frame that scripts call has \"actions\""},
        {R"({"startSound": "dot"})", "frames/0/startSound", "\"dot\" is no sound"},
        {R"({"volume": 256})", "frames/0/volume", "a whole number from 0 to 255 belongs here"},
        {R"({"ratio": {"a": 1}})", "frames/0/ratio/a", "nothing called \"a\" is placed here"},
        {R"({"purgeOrderUpdate": {"dot": 0}})", "frames/0/purgeOrderUpdate/dot",
         "a whole number from 1 to 255 belongs here"},
        {R"({"purgeOrderUpdate": {"x": 1}})", "frames/0/purgeOrderUpdate/x", "no character is called \"x\""},
        {R"({"place": {"a": {"character": "dot", "name": "n"}}})", "frames/0/place/a/name",
         "only sprites have names and handlers"},
        {R"({"place": {"a": {"character": "s", "handlers": [{"on": "key", "code": ""}]}}})",
         "frames/0/place/a/handlers/0/on", "\"key\" is no event; use load, unload, every-frame, event4 or event5"},
        {R"({"place": {"a": {"character": "red"}}})", "frames/0/place/a/character",
         "\"red\" is not to be seen; only shapes, sprites, buttons and text fields are placed"},
        {R"({"actions": "zz"})", "frames/0/actions", "there is no action \"zz\""},
        {R"({"actions": "Play\nzz"})", "frames/0/actions", "line 2: there is no action \"zz\""},
        {R"({"actions": ["Play", "zz"]})", "frames/0/actions/1", "there is no action \"zz\""},
        {R"({"actions": [["Play"], ["zz"]]})", "frames/0/actions/1/0", "there is no action \"zz\""},
        {R"({"actions": {"hex": "zz"}})", "frames/0/actions/hex",
         "pairs of hexadecimal digits belong here, not \"zz\" at character 1"},
        {R"({"actions": 7})", "frames/0/actions",
         "action code belongs here: a listing, a list of its lines, { \"file\": … } or { \"hex\": … }"},
    };
    for (const auto& each : cases) {
        try {
            buildMovie(withCharacters(R"("s": {"sprite": [{}]})", each.frames));
            ADD_FAILURE() << "built: " << each.frames;
        } catch (const SourceError& error) {
            EXPECT_EQ(error.field, each.field) << error.what();
            EXPECT_STREQ(error.what(), each.message);
        }
    }
}

}  // namespace
}  // namespace qel::author
