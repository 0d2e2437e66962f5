// One movie whose scripts do everything that scripts can: once as it should be, then with memory that runs out at every
// point. Whatever happens, playback comes to a defined end and gives everything back.
#include <gtest/gtest.h>

#include "author/assembler.h"
#include "author/character_records.h"
#include "author/source_tables.h"
#include "format/key_codes.h"
#include "script/conversions.h"
#include "script/everything_listings.h"
#include "script/scope.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::assembleActions;
using author::place;

constexpr auto select = static_cast<std::uint8_t>(KeyCode::select);
constexpr std::uint16_t shapeId = 10, innerId = 20, heroId = 21, buttonId = 30;

Bytes run(const std::string& listing) { return author::actions(assembleActions(listing)); }

// Of a frame record: type, length, cache identifier. Its items follow.
constexpr std::uint32_t headOfFrame = 5;

// The clip: a clip in it, three frames, of which the first can be called.
Bytes hero() {
    const Bytes code = run(pageOfHero);
    const author::PlacedClip inner{.characterId = innerId, .depth = 0, .name = "inner", .handlers = {}};
    return author::sprite(
        {.id = heroId,
         .frameCount = 3,
         .blocks = {{{headOfFrame, static_cast<std::uint32_t>(code.size())}, 0}},
         .labels = {{2, "end"}},
         .keyFrames = {},
         .timeline = author::joined({frameOf({code, author::placeClip(inner)}), frameOf({}), frameOf({})})});
}

Bytes everything() {
    const Bytes handlers = assembleActions(handler);
    const author::PlacedClip placed{
        .characterId = heroId,
        .depth = 0,
        .name = "hero",
        .handlers = {{.onLoad = true, .onFrame = true, .code = handlers}, {.onUnload = true, .code = handlers}}};
    const std::vector<author::ButtonCondition> conditions{{.key = select, .code = assembleActions(pressed)}};
    const Bytes page = frameOf({run(pageOfRoot)});
    MovieFile movie =
        smallMovie(40, 30,
                   {rectangle(shapeId, 1, 8, 4), spriteOf(innerId, {frameOf({place(shapeId, 0)}), frameOf({})}), hero(),
                    author::button(buttonId, {.up = shapeId}, conditions),
                    frameOf({run(definitions), author::placeClip(placed), place(buttonId, 1)}),
                    frameOf({author::move(0, at(2, 3))}), frameOf({run(calculations), run(objects)}),
                    frameOf({run(notesOf(textCalls)), run(notesOf(functionCalls)), run(mathematics())}),
                    frameOf({run(properties()), run(notesOf(clipCalls)), run(movements)}), page, frameOf({run("Stop")}),
                    frameOf({author::removeAt(0)}), frameOf({})});
    constexpr std::uint16_t pageFrame = 5, lastFrame = 7;
    movie.properties.labels(std::vector<author::Label>{{pageFrame, "page"}, {lastFrame, "last"}});
    author::LeadingTables tables;
    for (std::size_t i = 0; i < movie.records.size(); ++i)
        if (movie.records[i] == page)
            tables.callables.push_back(
                {i, pageFrame, {headOfFrame, static_cast<std::uint32_t>(page.size()) - headOfFrame}});
    addLeadingTables(movie, tables);
    return visFile(movie);
}

PlayOptions quick() {
    PlayOptions options;
    options.keepFrames = false;
    options.mostFrames = 60;
    options.schedule = {.keys = {{600, select}, {700, select}}, .endAtMs = 3000};
    return options;
}

std::string textOf(Movie& movie, std::string_view name) {
    return std::string(toText(movie, getVariable(movie, makeName(movie.scripts.memory, name))).view());
}

void expectADefinedEnd(const Playback& playback, const std::string& what) {
    EXPECT_EQ(playback.blocksLeft, 0) << what;
    EXPECT_EQ(playback.end, RunEnd::playbackEnded) << what;
    if (playback.opened == OpenResult::opened) {
        EXPECT_TRUE(playback.finished() || playback.aborted(AbortReason::outOfMemory)) << what;
    }
}

TEST(Everything, ComesOutAsItShould) {
    LiveMovie live(everything());
    live.playFrames(7);
    ASSERT_TRUE(live.playing());
    const struct {
        const char *variable, *expected;
    } rows[] = {
        {"n", "3"},
        {"bits", "26"},
        {"truth", "false"},
        {"chance", "0"},
        {"word", "arfa"},
        {"facts", "4truetrue65B67D12undefined4520"},
        {"kept", "1"},
        {"gone", "undefined"},
        {"i", "20"},
        {"whole", "a,2,c,undefined,e,7,a,2,c,undefined,e"},
        {"total", "0"},
        {"paths", "_level0.hero_root.hero5_root.hero.inner"},
        {"log",
         "hero;5;ff;4;"                                                                   // objects
         "e;101;abcd;4;bcde;de;cd;abc;ABC;aBc;undefined;1.25;ABC;"                        // texts
         "true;true;true;1.5;26;127;undefined;undefined;undefined;"                       // functions
         "1.32581766366803;8;2;64;"                                                       // of two numbers
         "hero;undefined;undefined;undefined;undefined;undefined;undefined;undefined;0;"  // clips
         "true;true;object;"
         "page;hero;hero;hero;hero;page;"},  // called, gone to, and played
    };
    for (const auto& row : rows) EXPECT_EQ(textOf(live.movie(), row.variable), row.expected) << row.variable;
    live.session().keyInput(select);
    live.playFrames(9);
    ASSERT_TRUE(live.playing());
    EXPECT_TRUE(textOf(live.movie(), "log").ends_with(";pressed;"));
    EXPECT_EQ(textOf(live.movie(), "handled"), "8") << "it comes, is there for six frames, and goes";
    EXPECT_TRUE(play(everything(), quick()).finished());
}

TEST(Everything, EndsDefinedWhicheverAllocationFails) {
    const Bytes content = everything();
    const std::uint64_t count = play(content, quick()).allocations;
    ASSERT_GT(count, 100u);
    for (std::uint64_t n = 1; n <= count; ++n) {
        PlayOptions once = quick(), from = quick();
        once.session.faults.failedAllocations = {n};
        from.session.faults.allocationsFailFrom = n;
        expectADefinedEnd(play(content, once), "allocation " + std::to_string(n));
        expectADefinedEnd(play(content, from), "allocations from " + std::to_string(n));
    }
}

TEST(Everything, EndsDefinedWithEveryBudget) {
    const Bytes content = everything();
    constexpr std::uint32_t tooLittle = 4000, plenty = 24000, step = 24;
    for (std::uint32_t budget = 0; budget <= plenty; budget += step) {
        PlayOptions options = quick();
        options.session.player.budget = budget;
        const Playback playback = play(content, options);
        expectADefinedEnd(playback, "budget " + std::to_string(budget));
        EXPECT_TRUE(budget > tooLittle || !playback.finished()) << budget;
        EXPECT_TRUE(budget < plenty || playback.finished()) << budget;
    }
}

}  // namespace
}  // namespace qel::test
