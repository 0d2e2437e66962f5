// Code that is made ready to run does what its bytes say, wherever jumps lead.
#include "script/program.h"

#include <gtest/gtest.h>

#include "author/assembler.h"
#include "script/conversions.h"
#include "script/scope.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

std::string resultOf(const Bytes& code) {
    LiveMovie live(author::visFile(smallMovie(2, 2, {frameOf({author::actions(code)}), frameOf({})})));
    live.playFrames(1);
    if (!live.playing()) return "failed";
    Movie& movie = live.movie();
    return std::string(toText(movie, getVariable(movie, makeName(movie.scripts.memory, "r"))).view());
}

struct Case {
    const char *name, *listing, *result;
};

TEST(Programs, JumpIntoTheMiddleOfWhatTheyJoin) {
    const Case cases[] = {
        {"the Increment of a counting variable", R"(
            Push 'r' 5
            Jump step
            Push 'r' 'r'
            GetVariable
        step:
            Increment
            SetVariable)",
         "6"},
        {"the same, after it was joined", R"(
            Push 'r' 0 'first' true
            SetVariable
            SetVariable
        again:
            Push 'r' 'r'
            GetVariable
        step:
            Increment
            SetVariable
            Push 'first'
            GetVariable
            Not
            If end
            Push 'first' false
            SetVariable
            Push 'r' 40
            Jump step
        end:)",
         "41"},
        {"the If behind a comparison", R"(
            Push true
            Jump decide
            Push 2 1
            Less2
        decide:
            If yes
            Push 'r' 'no'
            SetVariable
            End
        yes:
            Push 'r' 'yes'
            SetVariable)",
         "yes"},
        {"the GetVariable behind its name", R"(
            Push 'a' 'value'
            SetVariable
            Push 'r' 'a'
            Jump get
            Push 'b'
        get:
            GetVariable
            SetVariable)",
         "value"},
        {"a number and its Add2", R"(
            Push 'r' 'x' 7
            Jump sum
            Push 1
        sum:
            Add2
            SetVariable)",
         "x7"},
        {"values that are none of the joined types", R"(
            Push 'i' 'a'
            SetVariable
            Push 'i' 'i'
            GetVariable
            Increment
            SetVariable
            Push 'r' 'i'
            GetVariable
            Push 1
            Add2
            SetVariable)",
         "2"},
        {"a comparison of other values", R"(
            Push 'a' 'b'
            Less2
            If less
            End
        less:
            Push '1'
            Push 2
            Less2
            If both
            End
        both:
            Push 'r' 'both'
            SetVariable)",
         "both"},
    };
    for (const Case& each : cases) EXPECT_EQ(resultOf(author::assembleActions(each.listing)), each.result) << each.name;
}

void add(Bytes& to, const Bytes& bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }

constexpr std::uint8_t pushCode = static_cast<std::uint8_t>(Action::push);

// The head of a Push with so many bytes of values.
Bytes pushHead(std::size_t length) {
    return {pushCode, static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(length >> 8)};
}

// The operands of Push hold actions themselves: a jump finds them there.
TEST(Programs, JumpIntoOperands) {
    const Bytes hidden = author::assembleActions("Push 'r' 'hidden'\nSetVariable");
    Bytes code = author::assembleActions("Jump +3");
    add(code, pushHead(hidden.size()));
    add(code, hidden);
    EXPECT_EQ(resultOf(code), "hidden");
}

// Each of many places begins a Push of the same long row of values, one inside the other. What was made ready is
// forgotten when it grows too much, and the run goes on as if it were not.
TEST(Programs, GoOnWhenWhatWasMadeReadyIsForgotten) {
    constexpr std::size_t places = 40, values = 300;
    constexpr std::uint8_t null = 2;
    Bytes code = author::assembleActions("Push 'n' 0\nSetVariable");
    const std::size_t dispatch = code.size();
    const auto entry = [](std::size_t number, std::int64_t distance) {
        return author::assembleActions("Push 'n'\nGetVariable\nPush " + std::to_string(number) + "\nEquals2\nIf " +
                                       std::to_string(distance));
    };
    const Bytes done = author::assembleActions("Push 'r' 'n'\nGetVariable\nSetVariable\nEnd");
    const std::size_t entrySize = entry(0, 0).size(), region = dispatch + places * entrySize + done.size();
    for (std::size_t i = 0; i < places; ++i) {
        const std::size_t target = region + i * pushHead(0).size(), behind = code.size() + entrySize;
        add(code, entry(i, static_cast<std::int64_t>(target - behind)));
    }
    add(code, done);
    for (std::size_t i = places; i > 0; --i) add(code, pushHead((i - 1) * pushHead(0).size() + values));
    code.insert(code.end(), values, null);
    add(code, author::assembleActions("Push 'n' 'n'\nGetVariable\nIncrement\nSetVariable"));
    const auto back = static_cast<std::int64_t>(dispatch) - static_cast<std::int64_t>(code.size() + 5);
    add(code, author::assembleActions("Jump " + std::to_string(back)));
    EXPECT_EQ(resultOf(code), std::to_string(places));

    LiveMovie live(author::visFile(smallMovie(2, 2, {frameOf({author::actions(code)}), frameOf({})})));
    live.playFrames(1);
    std::uint32_t generations = 0;
    for (const Shared<ActionCode>& made : live.movie().scripts.recentCode)
        if (made) generations += made->program.generation;
    EXPECT_GT(generations, 0u) << "nothing had to be forgotten";
}

}  // namespace
}  // namespace qel::test
