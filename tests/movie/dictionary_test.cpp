// Characters: decoded as they stream by or on first use, counted, released, purged.
#include <gtest/gtest.h>

#include "author/character_records.h"
#include "movie/button.h"
#include "movie/edit_text.h"
#include "movie/frame_cache.h"
#include "support/live_movie.h"
#include "support/small_movie.h"

namespace qel::test {
namespace {

using author::place;

template <class T>
const T* decoded(Movie& movie, std::uint16_t id) {
    return static_cast<const T*>(movie.dictionary.entries[id].object);
}

unsigned usesOf(Movie& movie, std::uint16_t id) { return movie.dictionary.entries[id].object->useCount; }

TEST(Dictionary, DecodesWhatStreamsByAndCountsItsUses) {
    LiveMovie live(visFile(smallMovie(
        4, 4,
        {rectangle(10, 1, 2, 2), author::sound({.id = 30, .format = 3, .data = {1}}), frameOf({}),
         frameOf({place(10, 0), place(10, 1)}), frameOf({author::removeAt(0)}), frameOf({author::startSound(30)})})));
    live.playFrames(1);
    Movie& movie = live.movie();
    EXPECT_TRUE(isDecoded(movie.dictionary, 10));
    EXPECT_EQ(usesOf(movie, 10), 1u);
    EXPECT_EQ(usesOf(movie, 30), 0u) << "a sound counts from its first use";
    live.playFrames(2);
    EXPECT_EQ(usesOf(movie, 10), 3u);
    live.playFrames(3);
    EXPECT_EQ(usesOf(movie, 10), 2u);
    live.playFrames(4);
    EXPECT_EQ(usesOf(movie, 30), 1u);
}

TEST(Dictionary, KeepsEveryFieldOfWhatItDecodes) {
    const std::vector<author::ButtonCondition> conditions = {{.focusLost = true, .focusedKey = 150, .code = {1, 2}},
                                                             {.focusGained = true, .key = 151, .code = {}}};
    LiveMovie live(visFile(smallMovie(
        4, 4,
        {author::button(20, {.up = 1, .over = 2, .down = 3}, conditions),
         author::commandButton(21, {.up = 4, .over = 5, .down = 6}, 155, author::command(CommandNumber::stop, 255)),
         author::textField({.id = 22,
                            .bounds = {1, 2, 30, 40},
                            .flags = 0x0081,
                            .variable = "score",
                            .extraValue = 77,
                            .values = {1, 2, 3},
                            .colour = 0xFF8000,
                            .value4 = 9,
                            .text = "hello"}),
         author::sprite({.id = 23,
                         .frameCount = 4,
                         .keyFrameCount = 1,
                         .blocks = {{{5, 9}, 2}},
                         .labels = {{3, std::string(60, 'x')}},
                         .keyFrames = {1, 3},
                         .timeline = Bytes(20, 0)}),
         author::keyFrame(40, 0, author::instanceNumber(9)), frameOf({})})));
    live.playFrames(1);
    Movie& movie = live.movie();
    const auto* button = decoded<Button>(movie, 20);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->look(ButtonState::down), 3);
    ASSERT_EQ(button->conditions.size(), 2u);
    EXPECT_TRUE(button->conditions[0].onFocusLost && button->conditions[0].hasFocusedKey);
    EXPECT_EQ(button->conditions[0].focusedKey, 150);
    EXPECT_EQ(button->conditions[0].code.size(), 3u) << "a zero behind the code";
    EXPECT_EQ(button->conditions[1].anyTimeKey, 151);
    const auto* commandButton = decoded<CommandButton>(movie, 21);
    EXPECT_EQ(commandButton->key, 155);
    EXPECT_EQ(commandButton->commands.size(), 1u);
    const auto* field = decoded<EditText>(movie, 22);
    EXPECT_EQ(field->bounds, (Rect{1, 2, 30, 40}));
    EXPECT_STREQ(field->variable.begin(), "score");
    EXPECT_EQ(field->kept, 77);
    EXPECT_EQ(field->settings[2], 3);
    EXPECT_EQ(field->colour, 0xFC00);
    EXPECT_EQ(field->lastSetting, 9);
    EXPECT_STREQ(field->text.begin(), "hello");
    const auto* sprite = decoded<Sprite>(movie, 23);
    EXPECT_EQ(sprite->blocks[0].id, 2);
    EXPECT_EQ(sprite->blocks[0].offset, 5);
    EXPECT_EQ(sprite->blocks[0].length, 9);
    EXPECT_EQ(std::string(sprite->labels[0].text.data()), std::string(39, 'x')) << "39 characters are kept";
    EXPECT_EQ(sprite->keyFrames[1], 3);
    EXPECT_EQ(sprite->timeline.size(), 20u);
    const auto* cache = decoded<FrameCache>(movie, 40);
    ASSERT_NE(cache, nullptr);
    EXPECT_EQ(cache->items.size(), 3u);
}

// Whatever is read in pieces must come out the same from the stream and from the file.
TEST(Dictionary, BodiesOfAnyLengthComeOutTheSameFromTheStreamAndOnFirstUse) {
    for (const std::size_t size : {1u, 2000u, 2060u, 2080u, 4200u, 6130u, 6150u, 13000u}) {
        Bytes code(size);
        for (std::size_t i = 0; i < size; ++i) code[i] = static_cast<std::uint8_t>(1 + i % 250);
        const std::vector<author::ButtonCondition> conditions = {{.focusLost = true, .code = code},
                                                                 {.focusGained = true, .code = code}};
        LiveMovie live(
            visFile(smallMovie(4, 4, {frameOf({}), author::button(20, {}, conditions), frameOf({}), frameOf({})})));
        live.playFrames(1);
        for (const bool fromFile : {true, false}) {
            if (!fromFile) live.playFrames(2);
            const Lookup found = lookupCharacter(live.movie().dictionary, 20);
            ASSERT_TRUE(found.character) << size;
            const auto& button = static_cast<const Button&>(*found.character);
            ASSERT_EQ(button.conditions.size(), 2u);
            for (const ButtonCondition& condition : button.conditions)
                EXPECT_TRUE(std::equal(code.begin(), code.end(), condition.code.begin(), condition.code.end() - 1))
                    << size;
            freeCharacter(live.movie().dictionary, 20);
        }
    }
}

TEST(Dictionary, BrokenDefinitionsInTheStream) {
    const auto endingOf = [](const Bytes& definition) {
        return play(visFile(smallMovie(4, 4, {definition, frameOf({})})));
    };
    EXPECT_TRUE(endingOf(author::record(RecordType::sprite, Bytes{200, 0, 20, 0, 1, 0, 0, 0, 0}))
                    .aborted(AbortReason::brokenDefinition))
        << "a head that is longer than the body";
    Bytes wrongCondition{20, 0, 1, 0, 1, 0, 1, 0, 0, 90, 0, 0};
    EXPECT_TRUE(endingOf(author::record(RecordType::button, wrongCondition)).finished())
        << "what nobody uses hurts nobody";
    EXPECT_TRUE(endingOf(author::record(RecordType::sound, Bytes{20, 0})).finished());
    EXPECT_TRUE(endingOf(author::record(RecordType::textField, Bytes(3000, 0))).finished())
        << "too long to be read whole";
    for (const std::size_t size : {20u, 5000u})
        EXPECT_TRUE(endingOf(author::record(RecordType::bitmap, Bytes(size, 1))).finished())
            << "pictures are passed over";
}

TEST(Dictionary, BrokenDefinitionsThatAreUsedEndPlayback) {
    const auto cut = [](Bytes record, std::size_t bytes) {
        record.resize(record.size() - bytes);
        record[1] = static_cast<std::uint8_t>(record[1] - bytes);
        return record;
    };
    const std::vector<author::GradientStop> stops{{0, 0xFF0000}, {255, 0x0000FF}};
    const Bytes gradient = author::gradientFill(4, author::GradientType::linear, identityMatrix, stops);
    for (const Bytes& broken :
         {cut(gradient, 1), cut(author::solidFill(4, {}), 1), cut(author::bitmapFill(4, 0, 9, identityMatrix), 3),
          author::record(RecordType::solidFill, Bytes{4})})
        EXPECT_TRUE(play(visFile(smallMovie(4, 4, {broken, rectangle(10, 4, 2, 2), frameOf({place(10, 0)})})))
                        .aborted(AbortReason::outOfMemory) ||
                    broken.size() == 3)
            << "a style that cannot be had";
    const Bytes line = cut(author::lineStyle(4, {}, 3), 1), morph = cut(author::morphShape(11, 10, 10, {}), 1);
    EXPECT_TRUE(play(visFile(smallMovie(4, 4, {morph, frameOf({place(11, 0)})}))).aborted(AbortReason::outOfMemory));
    EXPECT_TRUE(play(visFile(smallMovie(4, 4, {line, frameOf({})}))).finished()) << "what nobody uses hurts nobody";
}

TEST(Purging, TakesIdleShapesAndThenWhatTheContentLists) {
    const std::vector<std::uint16_t> order = {11, 10, 20, 21};
    LiveMovie live(visFile(smallMovie(
        4, 4,
        {rectangle(10, 1, 2, 2), rectangle(11, 1, 2, 2), spriteOf(20, {frameOf({})}), spriteOf(21, {frameOf({})}),
         spriteOf(22, {frameOf({})}), author::purgeOrder(order),
         frameOf({place(20, 0), author::purgeOrderUpdate(std::vector<author::PurgePosition>{{22, 1}, {5, 9}})}),
         frameOf({})})));
    live.playFrames(1);
    CharacterDictionary& dictionary = live.movie().dictionary;
    const auto state = [&] {
        std::string text;
        for (const std::uint32_t id : {10u, 11u, 20u, 21u, 22u})
            text += isDecoded(dictionary, static_cast<std::uint16_t>(id)) ? '#' : '-';
        return text;
    };
    EXPECT_FALSE(purgeCharacters(dictionary, 1'000'000));
    EXPECT_EQ(state(), "###--") << "used shapes and a sprite that is shown stay";
    releaseCharacter(*dictionary.entries[10].object);
    EXPECT_TRUE(purgeCharacters(dictionary, 1));
    EXPECT_EQ(state(), "-##--");
    releaseCharacter(*dictionary.entries[11].object);
    releaseCharacter(*dictionary.entries[11].object);
    EXPECT_FALSE(purgeCharacters(dictionary, 1'000'000)) << "one release too many makes 255 uses";
    EXPECT_EQ(state(), "-##--");
}

}  // namespace
}  // namespace qel::test
