// Text fields follow the variables that they are bound to.
#include "movie/text_fields.h"

#include <gtest/gtest.h>

#include "author/assembler.h"
#include "author/character_records.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::assembleActions;
using author::place;

constexpr std::uint16_t fieldId = 20, clipId = 21, buttonId = 22, placedAlone = 0, placedInClip = 1, placedAsLook = 2;

Bytes code(std::string_view listing) { return author::actions(assembleActions(listing)); }

// A field on the root, one in the clip "c" and one as the look of a button, all bound to `variable`; the second frame
// runs a listing.
Bytes movieWithFields(const std::string& variable, std::string_view listing) {
    return author::visFile(smallMovie(
        40, 40,
        {author::textField({.id = fieldId, .bounds = {0, 0, 9, 9}, .variable = variable, .text = "begin"}),
         spriteOf(clipId, {frameOf({place(fieldId, 0)})}), author::button(buttonId, {fieldId, fieldId, fieldId}, {}),
         frameOf({place(fieldId, placedAlone), author::placeClip({clipId, placedInClip, "c", {}}),
                  author::move(placedInClip, at(9, 0)), place(buttonId, placedAsLook)}),
         frameOf({code(listing)}), frameOf({}), frameOf({})}));
}

std::vector<std::string> textsOf(const std::string& variable, std::string_view listing) {
    LiveMovie live(movieWithFields(variable, listing));
    live.playFrames(3);
    std::vector<std::string> texts;
    for (DisplayObject* object = live.movie().root.first; object; object = nextInDrawingOrder(object))
        if (const TextInstance* text = asText(object)) texts.emplace_back(shownText(*text));
    return texts;
}

using Texts = std::vector<std::string>;

TEST(TextFields, ShowWhatTheirVariableHolds) {
    const struct {
        const char *variable, *listing;
        Texts aloneInClipAsLook;
    } cases[] = {
        {"v", "Stop", {"begin", "begin", "begin"}},
        {"", "Push '' 'x'\nSetVariable", {"begin", "begin", "begin"}},
        {"v", "Push 'v' 7.5\nSetVariable", {"7.5", "7.5", "7.5"}},
        {"v", "Push 'v' ''\nSetVariable", {"", "", ""}},
        {"v", "Push 'v' 'root' 'c:v' 'clip'\nSetVariable\nSetVariable", {"root", "clip", "root"}},
        {"c:v", "Push 'c:v' 'clip'\nSetVariable", {"clip", "begin", "clip"}},
        {"/:v", "Push 'v' true\nSetVariable", {"true", "true", "true"}},
        {"v", "Push 'v' 2 1 2\nInitArray\nSetVariable", {"1,2", "1,2", "1,2"}},
        {"v", "DefineFunction 'v' {\n}", {"begin", "begin", "begin"}},
        {"c", "Stop", {"begin", "begin", "begin"}},
        {"_root", "Stop", {"begin", "begin", "begin"}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(textsOf(each.variable, each.listing), each.aloneInClipAsLook) << each.variable << each.listing;
}

TEST(TextFields, AreDrawnAnewWhenTheirTextBecomesAnother) {
    LiveMovie live(movieWithFields("v", "Push 'v' 'x'\nSetVariable"));
    live.playFrames(1);
    EXPECT_FALSE(live.movie().root.first->changed);
    DisplayObject& field = *live.movie().root.first;
    ASSERT_EQ(followVariable(live.movie(), *asText(&field)), Result::done);
    EXPECT_FALSE(field.changed) << "there is no such variable yet";
    live.playFrames(3);
    EXPECT_EQ(shownText(*asText(&field)), "x");
    ASSERT_EQ(followVariable(live.movie(), *asText(&field)), Result::done);
    EXPECT_FALSE(field.changed) << "the same text";
}

}  // namespace
}  // namespace qel::test
