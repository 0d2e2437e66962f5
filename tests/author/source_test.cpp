#include <gtest/gtest.h>

#include "author/frame_items.h"
#include "author/source_movie.h"
#include "author/source_path.h"

namespace qel::author {
namespace {

constexpr std::uint16_t idOfA = 1, idOfB = 2, idOfS = 3;

// A movie with the shapes "a" and "b", the sprite "s", and the frames given.
std::string withFrames(std::string_view frames) {
    return R"({"stage": [20, 10], "characters": {
        "a": {"shape": [{"path": "M 0 0 H 4 V 4 Z", "fill": "#ff0000"}]},
        "b": {"shape": [{"path": "M 0 0 H 4 V 4 Z", "fill": "#ff0000"}]},
        "s": {"sprite": [{"place": {"x": {"character": "a"}}}]}}, "frames": [)" +
           std::string(frames) + "]}";
}

std::vector<Bytes> recordsOf(std::string_view source, RecordType type) {
    std::vector<Bytes> found;
    for (const Bytes& record : buildMovie(source).records)
        if (record[0] == static_cast<std::uint8_t>(type)) found.push_back(record);
    return found;
}

std::vector<Bytes> framesOf(std::string_view frames) { return recordsOf(withFrames(frames), RecordType::frame); }

constexpr Matrix at(std::int16_t x, std::int16_t y) { return {.a = fixedOne, .d = fixedOne, .tx = x, .ty = y}; }

TEST(SourceTimeline, TurnsNamesIntoPositionsThatShift) {
    const auto frames = framesOf(R"(
        {"place": {"low": {"character": "a"}, "high": {"character": "a", "x": 1}}},
        {"place": {"mid": {"character": "b", "above": "low"}, "floor": {"character": "b", "below": "low"}}},
        {"remove": ["low"], "move": {"high": {"x": 7}}, "alpha": {"mid": 9}},
        {"remove": ["floor"], "move": {"high": {"y": 2}}})");
    ASSERT_EQ(frames.size(), 4u);
    EXPECT_EQ(frames[0], frame(joined({place(idOfA, 0), place(idOfA, 1), move(1, at(1, 0))})));
    EXPECT_EQ(frames[1], frame(joined({place(idOfB, 1), place(idOfB, 0)})));             // floor, low, mid, high
    EXPECT_EQ(frames[2], frame(joined({removeAt(1), move(2, at(7, 0)), alpha(1, 9)})));  // floor, mid, high
    EXPECT_EQ(frames[3], frame(joined({removeAt(0), move(1, at(7, 2))})));
}

// The frame that begins a tween shows where it starts; nothing is written where no pixel moves.
TEST(SourceTimeline, TweensWhileFramesAreHeld) {
    const auto frames = framesOf(R"(
        {"place": {"i": {"character": "a"}}, "tween": {"i": {"x": 8, "frames": 4}}, "hold": 3},
        {},
        {"tween": {"i": {"x": 0, "frames": 4, "ease": "in"}}, "hold": 6})");
    constexpr int still = -1;
    const int expected[] = {still, 2, 4, 6, 8, still, 6, 4, 0, still};  // from 8: 7.5, 6, 3.5, 0
    ASSERT_EQ(frames.size(), std::size(expected));
    for (std::size_t i = 1; i < frames.size(); ++i) {
        const Bytes items = expected[i] == still ? Bytes{} : move(0, at(static_cast<std::int16_t>(expected[i]), 0));
        EXPECT_EQ(frames[i], frame(items)) << "frame " << i;
    }
}

TEST(SourceTimeline, RotatesClockwiseAndScales) {
    const auto frames = framesOf(R"(
        {"place": {"i": {"character": "a", "rotate": 90, "scaleX": 2, "x": 3}}},
        {"move": {"i": {"rotate": 0, "scale": 0.5}}},
        {"move": {"i": {"matrix": [1, 0, -0.25, 1, 4, 5]}}})");
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0], frame(joined({place(idOfA, 0), move(0, {.b = 2 * fixedOne, .c = -fixedOne, .tx = 3})})));
    EXPECT_EQ(frames[1], frame(move(0, {.a = fixedOne / 2, .d = fixedOne / 2, .tx = 3})));
    EXPECT_EQ(frames[2], frame(move(0, {.a = fixedOne, .c = -fixedOne / 4, .d = fixedOne, .tx = 4, .ty = 5})));
}

// A key frame can be entered from anywhere: it places everything as it stands. A clip keeps its number, by which the
// player finds it again.
TEST(SourceTimeline, BuildsKeyFramesFromNothing) {
    constexpr std::string_view source = R"(
        {"key": true, "place": {"clip": {"character": "s"}, "i": {"character": "a"}}, "alpha": {"i": 40}},
        {"move": {"clip": {"x": 2}}},
        {"key": true, "label": "again", "move": {"i": {"x": 5}}})";
    const auto frames = framesOf(source);
    ASSERT_EQ(frames.size(), 3u);
    constexpr std::uint16_t firstCache = 4, secondCache = 5;  // behind a, b and s
    EXPECT_EQ(frames[0],
              keyFrame(firstCache, 0,
                       joined({instanceNumber(1), place(idOfS, 0), move(0, at(0, 0)), place(idOfA, 1), alpha(1, 40)})));
    EXPECT_EQ(frames[1], frame(move(0, at(2, 0))));
    EXPECT_EQ(frames[2], keyFrame(secondCache, 2,
                                  joined({instanceNumber(1), place(idOfS, 0), move(0, at(2, 0)), place(idOfA, 1),
                                          move(1, at(5, 0)), alpha(1, 40)})));
    Properties properties;
    properties.frameCount(3).frameDuration(50).labels(std::vector<Label>{{2, "again"}});
    properties.keyFrameIndex(std::vector<Properties::KeyFrame>{{0, firstCache}, {2, secondCache}}).dictionarySize(7);
    EXPECT_EQ(buildMovie(withFrames(source)).properties.record(), properties.record());
}

std::string sketch(const std::vector<SubPath>& paths) {
    const auto point = [](Point p) { return std::to_string(p.x) + "," + std::to_string(p.y); };
    std::string text;
    for (const SubPath& path : paths) {
        text += (text.empty() ? "" : " | ") + point(path.start);
        for (const PathStep& step : path.steps)
            text += (step.control ? " (" + point(*step.control) + ") " : " ") + point(step.to);
    }
    return text;
}

TEST(SourcePath, ReadsEverySegment) {
    const struct {
        const char *path, *expected;
    } cases[] = {
        {"M1 2L3 4", "1,2 3,4"},
        {"M 1,2 3,4 -5-6", "1,2 3,4 -5,-6"},
        {"m 1 2 3 4 l 1 0 0 1", "1,2 4,6 5,6 5,7"},
        {"M 1 2 H 9 V 8 h -1 v -2", "1,2 9,2 9,8 8,8 8,6"},
        {"M 0 0 Q 1 2 3 4 q 1 1 2 0", "0,0 (1,2) 3,4 (4,5) 5,4"},
        {"M 0 0 Q 1 2 3 4 T 9 9 t 1 1", "0,0 (1,2) 3,4 (5,6) 9,9 (13,12) 10,10"},
        {"M 0 0 L 5 5 T 9 9", "0,0 5,5 (5,5) 9,9"},
        {"M 1 1 L 4 1 Z l 2 2", "1,1 4,1 1,1 | 1,1 3,3"},
        {"M 1 1 L 1 1 z M 2 2", "1,1 1,1 | 2,2"},
        {"", ""},
    };
    for (const auto& each : cases) EXPECT_EQ(sketch(parsePath(each.path)), each.expected) << each.path;
}

TEST(SourcePath, SaysWhatItDoesNotTake) {
    const struct {
        const char *path, *expected;
    } cases[] = {
        {"M 0 0 A 5 5 0 0 1 9 9", "arcs are not supported; approximate them with Q"},
        {"M 0 0 c 1 1 2 2 3 3", "cubic curves are not supported; approximate them with Q"},
        {"M 0 0 B 1 1", "\"B\" is no path command; use M L H V Q T Z"},
        {"L 1 1", "a path begins with M"},
        {"M 0 0 L 1", "a coordinate is missing at character 10"},
        {"M 0 0 L 1 2.5", "coordinates are whole pixels; round \"2.5...\""},
        {"M 0 0 L 1 -", "a coordinate at character 11 is no whole number from -32768 to 32767"},
        {"M 32767 0 h 1", "a coordinate at character 13 is no whole number from -32768 to 32767"},
    };
    for (const auto& each : cases) {
        try {
            parsePath(each.path);
            ADD_FAILURE() << each.path;
        } catch (const PathError& error) {
            EXPECT_STREQ(error.what(), each.expected);
        }
    }
}

std::string shapeMovie(std::string_view characters) {
    return R"({"stage": [20, 10], "characters": {)" + std::string(characters) + R"(}, "frames": [{}]})";
}

// Of overlapping fills the one with the higher identifier is seen: what is listed later needs one of its own.
TEST(SourceShapes, GiveLaterPathsHigherFills) {
    const std::string source = shapeMovie(R"(
        "sky": {"fill": "#0000ff80"},
        "x": {"shape": [{"path": "M 0 0 H 9 V 9 Z", "fill": "#ff0000"}, {"path": "M 1 1 H 8 V 8 Z", "fill": "sky"},
                        {"path": "M 2 2 H 7 V 7 Z", "fill": "#ff0000"}]},
        "y": {"shape": [{"path": "M 0 0 H 9 V 9 Z", "fill": "sky"}, {"path": "M 1 1 H 8 V 8 Z", "fill": "#ff0000"}]})");
    const Bytes red = solidFill(4, {0xFF0000}), blueAgain = solidFill(5, {0x0000FF, 128}),
                redAgain = solidFill(6, {0xFF0000});
    EXPECT_EQ(recordsOf(source, RecordType::solidFill),
              (std::vector<Bytes>{solidFill(1, {0x0000FF, 128}), red, blueAgain, redAgain}));
    const auto shapes = recordsOf(source, RecordType::shape);
    ASSERT_EQ(shapes.size(), 2u);
    const auto square = [](Outline& outline, std::uint16_t fill, std::int16_t low, std::int16_t high) {
        outline.style({.line = noCharacter, .fill0 = fill, .fill1 = noCharacter}).moveTo({low, low});
        outline.lineTo({high, low}).lineTo({high, high}).lineTo({low, low});
    };
    Outline outline;
    square(outline, 1, 0, 9);
    square(outline, 4, 1, 8);  // the red of the first shape serves here too
    EXPECT_EQ(shapes[1],
              shape({.id = 3, .bounds = {0, 0, 9, 9}, .outline = outline, .bitmapFills = {}, .gradientFills = {}}));
}

TEST(SourceShapes, CloseFillsWithoutALine) {
    const auto shapes = recordsOf(shapeMovie(R"("thin": {"line": "#000000", "width": 2},
        "v": {"shape": [{"path": "M 0 0 L 4 4 Q 6 2 8 0", "fill": "#ffffff", "line": "thin"}]})"),
                                  RecordType::shape);
    ASSERT_EQ(shapes.size(), 1u);
    Outline outline;
    outline.style({.line = 1, .fill0 = 3, .fill1 = noCharacter}).moveTo({0, 0}).lineTo({4, 4});
    outline.curveBy({2, -2}, {2, -2});  // the control from the pen, the end from the control
    outline.style({.line = noCharacter, .fill0 = {}, .fill1 = {}}).lineTo({0, 0});
    outline.style({.line = 1, .fill0 = {}, .fill1 = {}});
    EXPECT_EQ(shapes[0],
              shape({.id = 2, .bounds = {0, 0, 8, 4}, .outline = outline, .bitmapFills = {}, .gradientFills = {}}));
}

// The announced background does not change what the frame buffer is cleared to; the record does.
TEST(SourceMovie, WritesTheBackgroundForTheHostAndForTheScreen) {
    const MovieFile movie = buildMovie(R"({"stage": [20, 10], "background": "#00ff00", "dropFrames": true,
        "frameDurations": [10, 20], "frames": [{}, {"background": "#0000ff"}, {}]})");
    EXPECT_EQ(movie.records, (std::vector<Bytes>{backgroundColour(0x00FF00), frame({}), backgroundColour(0x0000FF),
                                                 frame({}), frame({})}));
    Properties properties;
    properties.frameCount(3).frameDurations(std::vector<std::uint16_t>{10, 20}).background(0x00FF00).dictionarySize(1);
    EXPECT_EQ(movie.properties.record(), properties.record());
    EXPECT_TRUE(movie.dropFrames);
    EXPECT_EQ(movie.width, 20);
    EXPECT_EQ(movie.height, 10);
}

struct BrokenSource {
    std::string source;
    std::size_t line;
    const char *field, *message;
};

void expectError(const BrokenSource& broken) {
    try {
        buildMovie(broken.source);
        ADD_FAILURE() << "built: " << broken.source;
    } catch (const SourceError& error) {
        EXPECT_EQ(error.line, broken.line) << broken.source;
        EXPECT_EQ(error.field, broken.field) << broken.source;
        EXPECT_STREQ(error.what(), broken.message) << broken.source;
    }
}

TEST(SourceErrors, NameTheLineAndTheFieldOfTheMovie) {
    const BrokenSource cases[] = {
        {"", 1, "", "the text ends too early"},
        {"{\n\"stage\": [1, 1]\n\"frames\": []}", 3, "", "not understood near \"\"frames\"\""},
        {"{\"stage\": [1, 1],\n // twice\n \"stage\": 2}", 3, "", "\"stage\" stands here twice"},
        {"[]", 1, "", "this is a list, but an object belongs here"},
        {"{\n\"stage\": [1, 1]}", 1, "", "\"frames\" is missing"},
        {"{\"stage\": [1], \"frames\": [{}]}", 1, "stage", "a stage is [width, height] in pixels"},
        {"{\"stage\": [1,\n5000], \"frames\": [{}]}", 2, "stage/1", "a whole number from 1 to 4096 belongs here"},
        {"{\"stage\": [1, 1],\n\"fps\": 25, \"frames\": [{}]}", 2, "fps", "nothing is called \"fps\" here"},
        {"{\"stage\": [1, 1], \"frames\": []}", 1, "frames", "a timeline has at least one frame"},
        {"{\"stage\": [1, 1], \"frameDurations\": [5],\n\"frames\": [{}, {}, {}]}", 1, "frameDurations",
         "2 durations belong here: one for each frame but the last, which has none"},
        {"{\"stage\": [1, 1],\n\"background\": \"#12345678\", \"frames\": [{}]}", 2, "background",
         "this colour is always opaque; write #rrggbb"},
    };
    for (const BrokenSource& each : cases) expectError(each);
}

TEST(SourceErrors, NameTheCharacter) {
    const struct {
        const char* characters;
        std::size_t line;
        const char *field, *message;
    } cases[] = {
        {"\"x\": {}", 1, "characters/x",
         "\"x\" has none of fill, gradient, line, shape, morph, sprite, button, commandButton, sound, "
         "textField, compressionTable, svg"},
        {"\"x\":\n{\"fill\": \"red\"}", 2, "characters/x/fill", "\"red\" is no colour; write #rrggbb or #rrggbbaa"},
        {"\"x\": {\"fill\": \"#ffffff\",\n\"line\": \"#ffffff\"}", 2, "characters/x/line",
         "\"x\" can be only one thing"},
        {"\"x\": {\"shape\": [\n{\"path\": \"M 0 0 A\", \"fill\": \"#ffffff\"}]}", 2, "characters/x/shape/0/path",
         "arcs are not supported; approximate them with Q"},
        {"\"x\": {\"shape\": [{\"path\": \"M 0 0\"}]}", 1, "characters/x/shape/0", "a path has a fill or a line"},
        {"\"x\": {\"shape\": [{\"path\": \"M 0 0\", \"fill\": \"y\"}]}", 1, "characters/x/shape/0/fill",
         "no character is called \"y\""},
        {"\"x\": {\"gradient\": \"linear\", \"stops\": [[9, \"#ffffff\"], [8, \"#ffffff\"]]}", 1,
         "characters/x/stops/1/0", "a whole number from 9 to 255 belongs here"},
        {"\"x\": {\"sprite\": [{\"place\": {\"i\": {\"character\":\n\"y\"}}}]}", 2,
         "characters/x/sprite/0/place/i/character", "no character is called \"y\""},
        {"\"x\": {\"sprite\": [{\"place\": {\"i\": {\"character\": \"x\"}}}]}", 1, "characters/x",
         "sprites stand in one another 64 deep here; does one hold itself?"},
    };
    for (const auto& each : cases) expectError({shapeMovie(each.characters), each.line, each.field, each.message});
}

TEST(SourceErrors, NameTheFrame) {
    const struct {
        const char* frames;
        const char *field, *message;
    } cases[] = {
        {"{\"move\": {\"i\": {\"x\": 1}}}", "frames/0/move/i", "nothing called \"i\" is placed here"},
        {"{\"place\": {\"i\": {\"character\": \"a\"}}}, {\"place\": {\"i\": {\"character\": \"a\"}}}",
         "frames/1/place/i", "\"i\" is placed already"},
        {"{\"place\": {\"i\": {\"character\": \"a\", \"above\": \"j\"}}}", "frames/0/place/i/above",
         "nothing called \"j\" is placed here"},
        {"{\"place\": {\"i\": {\"character\": \"a\"}}, \"tween\": {\"i\": {\"x\": 5}}}", "frames/0/tween/i",
         "\"frames\" is missing"},
        {"{\"place\": {\"i\": {\"character\": \"a\", \"x\": 1, \"matrix\": [1, 0, 0, 1, 0, 0]}}}",
         "frames/0/place/i/matrix", "a matrix says all there is; x, y, scale and rotate do not stand beside it"},
        {"{\"hold\": 65535}, {\"hold\": 2}", "frames/1", "a timeline holds at most 65535 frames"},
        {"{\"place\": {\"i\": {\"character\": \"a\", \"x\": 40000}}}", "frames/0/place/i/x",
         "a number from -32767 to 32767 belongs here"},
    };
    for (const auto& each : cases) expectError({withFrames(each.frames), 4, each.field, each.message});
}

// Content that no record can hold must be an error of the source, and no input a crash.
TEST(SourceErrors, CoverWhatTheFormatCannotHold) {
    std::string crowd, deep(100000, '[');
    for (int i = 0; i < 257; ++i) crowd += (i ? ", \"" : "\"") + std::to_string(i) + "\": {\"character\": \"a\"}";
    std::string longPath = "M 0 0";
    for (int i = 0; i < 20000; ++i) longPath += " l 9 9 -9 -9";
    for (const std::string& source :
         {withFrames("{\"place\": {" + crowd + "}}"), deep,
          shapeMovie("\"x\": {\"shape\": [{\"path\": \"" + longPath + "\", \"fill\": \"#ffffff\"}]}")})
        EXPECT_THROW(buildMovie(source), SourceError) << source.substr(0, 60);
}

}  // namespace
}  // namespace qel::author
