#include "author/inspect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "author/frame_items.h"
#include "author/inspect_listing_lines.h"
#include "author/movie_writer.h"
#include "author/structures.h"

namespace qel::author {
namespace {

// The smallest whole movie, by hand.
Bytes handMade() {
    return {
        'V', 'I', 'S', 0x80, 22,   0,    0,    0,   0,  0, 0, 0, 0, 0, 0, 0, 0,  // scanDefinitions
        55,  0,   0,   0,    1,    0,    240,  0,   64, 1, 0, 0,                 // 55 bytes, 1 frame, 240 x 320
        1,   4,   0,   67,   2,    2,    0,                                      // at 29: record 1, a dictionary of 2
        52,  6,   1,   0,    0x30, 0x1F, 0x00, 255,                              // at 36: solid fill 1, blue
        16,  6,   0,   0xFF, 0xFF, 0x13, 1,    0,   7,  // at 44: a frame that places it at depth 7
        254, 0,                                         // at 53
    };
}

// A movie with one of nearly everything, all of it right.
MovieFile richMovie() {
    MovieFile movie;
    const std::array<Label, 1> labels{Label{.frame = 0, .name = "start"}};
    const std::array<Properties::KeyFrame, 1> index{Properties::KeyFrame{.frame = 0, .cacheId = 7}};
    movie.properties.dictionarySize(10).frameDuration(40).labels(labels).keyFrameIndex(index);
    movie.properties.commands(command(CommandNumber::play, 53));
    const std::array<Name, 1> names{Name{.id = 3, .name = "ball"}};
    movie.leading = {nameTable(names)};
    Outline outline;
    outline.style({.line = 2, .fill0 = 1, .fill1 = {}}).moveTo({10, 20}).lineBy({5, -5}).curveBy({1, 2}, {3, 4});
    SpriteRecord clip{.id = 4,
                      .frameCount = 1,
                      .keyFrameCount = 0,
                      .labels = {{.frame = 0, .name = "in"}},
                      .keyFrames = {},
                      .timeline = frame(place(3, 0))};
    movie.records = {
        solidFill(1, {.colour = 0xFF0000}),
        lineStyle(2, {.colour = 0x0000FF, .alpha = 128}, 3),
        shape({.id = 3, .bounds = {0, 0, 20, 30}, .outline = outline, .bitmapFills = {}, .gradientFills = {}}),
        sprite(clip),
        keyFrame(7, 0, joined({place(3, 0), move(0, {.a = 0x18000, .d = fixedOne, .tx = -4, .ty = 9})})),
        frame(
            placeClip({.characterId = 4, .depth = 1, .name = "ship", .handlers = {{.onLoad = true, .code = {0x07}}}}))};
    return movie;
}

const InspectionProblem* problemWith(const Inspection& inspection, std::string_view text) {
    for (const InspectionProblem& problem : inspection.problems) {
        if (problem.text.find(text) != std::string::npos) return &problem;
    }
    return nullptr;
}

std::string allProblems(const Inspection& inspection) {
    std::string all;
    for (const InspectionProblem& problem : inspection.problems)
        all += std::to_string(problem.offset) + ": " + problem.text + "\n";
    return all;
}

TEST(Inspect, ListsEveryPartWithItsPlace) {
    const std::vector<std::string> expected = {
        "movie: VIS, 55 bytes",
        "",
        "offset length part",
        "0 29 header version 22 scanDefinitions yes dropFrames no fontMode builtIn fitToScreen no hasExtension no "
        "contentLength 55 frameCount 1 width 240 height 320",
        "29 7 movieProperties (1)",
        "32 4 dictionarySize (67) dictionarySize 2",
        "36 8 solidFill (52) identifier 1 format rgb565 colour 0x001F alpha 255",
        "44 9 frame (16) index 0 cached no",
        "49 4 place (1) character 1 depth 7",
        "53 2 end (254)",
        "",
        "no problems",
    };
    EXPECT_EQ(listingLines(handMade()), expected);
}

TEST(Inspect, FindsNothingWrongWithWholeMovies) {
    EXPECT_EQ(allProblems(inspectContent(visFile(richMovie()))), "");
    EXPECT_EQ(allProblems(inspectContent(zvisFile(visFile(richMovie())))), "");
    MovieFile withTrailers = richMovie();
    withTrailers.fontMode = 1;
    withTrailers.fontBlock = Bytes{1, 2, 3};
    Bytes overlay(64 + 7 + 19 + 2);
    overlay[21] = 120;
    overlay[57] = static_cast<std::uint8_t>(overlay.size() - 64 + 4);
    overlay[64] = 18;  // an hour hand,
    overlay[67] = 2;   // two bytes of picture,
    overlay[71] = 7;   // of 2-byte pixels
    withTrailers.extensionBlock = overlay;
    const Bytes content = visFile(withTrailers);
    EXPECT_EQ(allProblems(inspectContent(content)), "");
    EXPECT_EQ(partLine(content, "fontBlock"), "fontBlock blockLength 3");
    EXPECT_EQ(partLine(content, "extensionBlock"),
              "extensionBlock blockLength 92 clockX 120 clockY 0 sectionsLength 32");
    EXPECT_EQ(partLine(content, "hourHand"),
              "hourHand (18) item image16 frameCount 0 width 0 height 0 pivotX 0 pivotY 0 x 0 y 0 dataBytes 2");
}

TEST(Inspect, SaysInWordsWhatPartsHold) {
    const Bytes content = visFile(richMovie());
    const char* const expected[][2] = {
        {"label", "label frame 0 label \"start\""},
        {"keyFrame", "keyFrame frame 0 identifier 7"},
        {"characterName", "characterName character 3 name \"ball\""},
        {"play", "play (2) event 53 when key"},
        {"lineStyle", "lineStyle (56) identifier 2 format rgb565 width 3 colour 0x001F alpha 128"},
        {"shape", "shape (9) identifier 3 bounds (0, 0, 20, 30) pathRecords 4 styleGroups 1 flag no hasFill yes"},
        {"styleChange", "styleChange (1) line 2 fill0 1"},
        {"curveBy", "curveBy (4) controlBy (1, 2) endBy (3, 4)"},
        {"move", "move (5) depth 0 matrix (1.5, 0, 0, 1, -4, 9)"},
        {"placeClip", "placeClip (13) character 4 depth 1 name \"ship\" events load"},
        {"handler", "handler events load actions 1 actionBytes 1"},
    };
    for (const auto& [part, line] : expected) {
        std::string found = partLine(content, part);
        if (std::string_view(part) == "shape") found.resize(std::min(found.size(), std::string_view(line).size()));
        EXPECT_EQ(found, line);
    }
}

TEST(Inspect, SaysInWordsWhatFrameItemsAndCommandsDo) {
    ByteWriter loop, moved;
    loop.u8(255).u16(7).u16(12).u8(3).u16(7);
    moved.u8(53);
    writePoint(moved, {-3, 8});
    const std::pair<Bytes, const char*> cases[] = {
        {removeAt(4), "remove (2) depth 4"},
        {ratio(1, 500), "ratio (3) depth 1 ratio 500"},
        {colour(2, {.redMultiplier = 128, .alphaOffset = -20}), "colour (4) depth 2 alphaOffset -20 redMultiplier 128"},
        {alpha(0, 77), "alpha (6) depth 0 alpha 77"},
        {volume(50), "volume (9) volume 50"},
        {instanceNumber(9), "instanceNumber (12) number 9"},
        {purgeOrderUpdate(std::array<PurgePosition, 1>{PurgePosition{7, 2}}),
         "purgeOrderUpdate (11) characters (7) positions (2)"},
        {actions(Bytes{0x96, 2, 0, 'a', 0, 0x17, 0}), "actions (14) actions 2 actionBytes 7"},
        {commands(command(CommandNumber::frameLoop, loop.take())),
         "frameLoop (10) event 255 when every-frame firstKeyFrame 7 lastFrame 12 count 3 keyFrameAfter 7"},
        {commands(command(CommandNumber::scrollBy, moved.take())), "scrollBy (14) event 53 when key by (-3, 8)"},
        {commands(textCommand(CommandNumber::openUrl, 254, "a\"\x01")),
         "openUrl (11) event 254 when default url \"a\\\"\\x01\""},
        {commands(command(CommandNumber::vibrate, Bytes{253, 5})),
         "vibrate (12) event 253 when any-key milliseconds 500"},
        {commands(command(CommandNumber::fade, Bytes{49, 0xF6, 0xFF})), "fade (27) event 49 when key change -10"},
    };
    for (const auto& [bytes, line] : cases) {
        MovieFile movie = richMovie();
        movie.records.push_back(frame(bytes));
        const std::string wanted = line;
        const std::vector<std::string> lines = listingLines(visFile(movie));
        EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&](const std::string& l) { return l.ends_with(wanted); }))
            << wanted;
    }
}

struct BrokenCase {
    const char* name;
    std::function<Bytes()> content;
    Severity severity;
    const char* text;
};

Bytes changed(Bytes bytes, std::size_t at, std::uint8_t value) {
    bytes[at] = value;
    return bytes;
}

Bytes with(const std::function<void(MovieFile&)>& change) {
    MovieFile movie = richMovie();
    change(movie);
    return visFile(movie);
}

// Sub-records, records and items that the writer cannot be asked for are bytes by hand.
const BrokenCase brokenCases[] = {
    {"no magic",
     [] {
         return Bytes{'G', 'I', 'F', '8'};
     },
     Severity::error, "the first bytes are none of"},
    {"empty", [] { return Bytes{}; }, Severity::error, "the first bytes are none of"},
    {"old version", [] { return changed(handMade(), 4, 15); }, Severity::error,
     "version 15 belongs to the frame decoder"},
    {"first record", [] { return changed(handMade(), 29, 3); }, Severity::error,
     "a record of type 3 cannot stand here"},
    {"order", [] { return with([](MovieFile& m) { m.leading.push_back(blockTable({})); }); }, Severity::error,
     "a record of type 20 cannot stand here"},
    {"long name table",
     [] { return with([](MovieFile& m) { m.leading = {record(RecordType::nameTable, Bytes(6142))}; }); },
     Severity::error, "may have 6144 bytes, not 6145"},
    {"record past the end", [] { return changed(handMade(), 45, 200); }, Severity::error,
     "the record of 200 bytes runs past the end of the content at 55"},
    {"item past its frame", [] { return changed(handMade(), 49, 0x14); }, Severity::error,
     "the item of 4 bytes runs past"},
    {"short item", [] { return changed(handMade(), 49, 0x12); }, Severity::error, "depth is cut off"},
    {"sub-record past record 1", [] { return changed(handMade(), 33, 3); }, Severity::error,
     "the sub-record of 3 bytes runs past"},
    {"no end record", [] { return with([](MovieFile& m) { m.ended = false; }); }, Severity::error,
     "without record 254"},
    {"no record 1",
     [] {
         Bytes content = visHeader({.contentLength = 35});
         const Bytes names = nameTable({});
         content.insert(content.end(), names.begin(), names.end());
         return content;
     },
     Severity::error, "record 1, the movie's properties, is missing"},
    {"text field too long",
     [] { return with([](MovieFile& m) { m.records.push_back(record(RecordType::compressionTable, Bytes(2076))); }); },
     Severity::error, "may have 2078 bytes, not 2079"},
    {"block behind the file",
     [] {
         return with([](MovieFile& m) {
             const std::array<Block, 1> blocks{Block{{.offset = 5000, .length = 10}, 1}};
             m.leading = {blockTable(blocks)};
         });
     },
     Severity::error, "the block of 10 bytes at 5000 runs past the end of the file"},
    {"extension missing", [] { return changed(handMade(), 10, 0x80); }, Severity::error,
     "the file ends before the extension block"},
    {"path past its shape",
     [] {
         return with([](MovieFile& m) {
             Outline outline;
             Bytes body{0};
             outline.pathRecord(2, body);
             ShapeRecord fields{.id = 9, .bounds = {}, .outline = outline, .bitmapFills = {}, .gradientFills = {}};
             Bytes bytes = shape(fields);
             bytes[bytes.size() - 2] = 2 << 5 | 9;
             m.records.push_back(bytes);
         });
     },
     Severity::error, "the path record of 9 bytes runs past the end of its shape"},
    {"sprite head",
     [] {
         return with([](MovieFile& m) { m.records.push_back(record(RecordType::sprite, Bytes{200, 0, 9, 0, 1, 0})); });
     },
     Severity::error, "the head of 200 bytes runs past"},
    {"action past its list",
     [] { return with([](MovieFile& m) {
              m.records.push_back(frame(actions(Bytes{0x96, 9, 0, 1})));
          }); },
     Severity::error, "action 0x96 runs past the end of its list"},
    {"command past its list",
     [] { return with([](MovieFile& m) {
              m.records.push_back(frame(commands(Bytes{2 << 2 | 2, 1})));
          }); },
     Severity::error, "the command of 3 bytes runs past the end of its list"},
    {"button entry",
     [] {
         return with([](MovieFile& m) {
             m.records.push_back(record(RecordType::button, Bytes{8, 0, 3, 0, 3, 0, 3, 0, 0, 5, 0, 1}));
         });
     },
     Severity::error, "the entry of 5 bytes runs past the end of its button"},
    {"outside the dictionary", [] { return changed(handMade(), 34, 1); }, Severity::warning,
     "identifier 1 lies outside the dictionary of 1 entries"},
    {"defined twice", [] { return with([](MovieFile& m) { m.records.push_back(solidFill(1, {})); }); },
     Severity::warning, "character 1 is defined already"},
    {"defined nowhere", [] { return with([](MovieFile& m) { m.records.push_back(frame(place(8, 0))); }); },
     Severity::warning, "character 8 is defined nowhere"},
    {"frame number", [] { return with([](MovieFile& m) { m.records.push_back(keyFrame(6, 9, {})); }); },
     Severity::warning, "frame 2 calls itself frame 9"},
    {"frame count", [] { return with([](MovieFile& m) { m.frameCount = std::uint16_t{9}; }); }, Severity::warning,
     "9 frames are announced, 2 are there"},
    {"directory",
     [] {
         return with([](MovieFile& m) {
             std::array<DirectoryEntry, 2> entries;
             entries[1] = {{.offset = 100, .length = 7}, CharacterKind::shape};
             m.leading = {characterDirectory(entries)};
         });
     },
     Severity::warning, "no definition of character 1 begins at 100"},
    {"colour format", [] { return changed(handMade(), 40, 0x70); }, Severity::warning, "colour format 7 is unknown"},
    {"bytes behind the content",
     [] {
         Bytes content = handMade();
         content.push_back(0);
         return content;
     },
     Severity::warning, "1 bytes from 55 on belong to nothing"},
};

TEST(Inspect, StatesWhatIsBroken) {
    for (const BrokenCase& broken : brokenCases) {
        const Inspection inspection = inspectContent(broken.content());
        const InspectionProblem* problem = problemWith(inspection, broken.text);
        EXPECT_TRUE(problem && problem->severity == broken.severity) << broken.name << "\n" << allProblems(inspection);
        EXPECT_EQ(inspection.errorCount > 0, broken.severity == Severity::error) << broken.name << "\n"
                                                                                 << allProblems(inspection);
    }
}

TEST(Inspect, GoesOnBehindABrokenBody) {
    MovieFile movie = richMovie();
    movie.records.insert(movie.records.begin(), record(RecordType::gradientFill, Bytes{9, 0}));
    const Inspection inspection = inspectContent(visFile(movie));
    EXPECT_EQ(inspection.errorCount, 1u) << allProblems(inspection);
    EXPECT_EQ(partLine(visFile(movie), "solidFill"),
              "solidFill (52) identifier 1 format rgb565 colour 0xF800 alpha 255");
}

TEST(Inspect, StatesAReasonWhereverContentIsCut) {
    for (const Bytes& content : {visFile(richMovie()), zvisFile(visFile(richMovie()))}) {
        for (std::size_t length = 0; length < content.size(); ++length) {
            const Inspection inspection = inspectContent(std::span{content}.first(length));
            EXPECT_GT(inspection.errorCount, 0u) << "cut to " << length << " bytes";
        }
    }
}

TEST(Inspect, ListsAnyBytesAsValidJson) {
    const Bytes whole = visFile(richMovie());
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const unsigned value : {0x00u, 0xFFu, whole[at] ^ 0x80u, whole[at] + 1u}) {
            const Bytes content = changed(whole, at, static_cast<std::uint8_t>(value));
            const Inspection inspection = inspectContent(content);
            const auto json = nlohmann::json::parse(inspectionJson(inspection, "a\"\xFF.vis"), nullptr, false);
            ASSERT_TRUE(json.is_object()) << "byte " << at << " as " << value;
            EXPECT_EQ(json["broken"], inspection.errorCount > 0);
        }
    }
}

TEST(Inspect, NestsPartsInJsonWithTheSameFacts) {
    const auto json = nlohmann::json::parse(inspectionJson(inspectContent(visFile(richMovie())), "movie"));
    EXPECT_EQ(json["kind"], "VIS");
    const auto named = [](const nlohmann::json& parts, const char* name) {
        for (const auto& part : parts) {
            if (part["name"] == name) return part;
        }
        return nlohmann::json{};
    };
    const auto sprite = named(json["parts"], "sprite");
    EXPECT_EQ(sprite["type"], 40);
    const auto inner = named(sprite["children"], "frame");
    EXPECT_EQ(inner["fields"]["cached"], false);
    EXPECT_EQ(inner["children"][0]["fields"], nlohmann::json::parse(R"({"character":3,"depth":0})"));
    const auto keyFrame = named(json["parts"], "frame");
    EXPECT_EQ(keyFrame["children"][1]["fields"]["matrix"], nlohmann::json::parse("[1.5,0,0,1,-4,9]"));
}

TEST(Inspect, KeepsWithinItsLimits) {
    MovieFile movie;
    movie.records.assign(20, frame(Bytes(65000)));  // every byte is an empty item
    const Inspection inspection = inspectContent(visFile(movie));
    EXPECT_EQ(inspection.parts.size(), maxInspectedParts);
    EXPECT_TRUE(problemWith(inspection, "what follows is not looked at"));
    movie.records.assign(3000, record(RecordType::gradientFill, Bytes{9, 0}));
    const Inspection manyProblems = inspectContent(visFile(movie));
    EXPECT_EQ(manyProblems.problems.size(), maxListedProblems);
    EXPECT_EQ(manyProblems.errorCount, 3000u);
}

}  // namespace
}  // namespace qel::author
