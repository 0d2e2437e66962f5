#include "host/keyboard.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "format/key_codes.h"
#include "host/bitmap_font.h"

namespace qel {
namespace {

TEST(Keyboard, StandsForTheKeysOfTheDevice) {
    struct Row {
        const char *name, *place;
        int code;  // 0: none
    };
    const Row rows[] = {
        {"0", "0", 128},
        {"9", "9", 137},
        {"Keypad 5", "Keypad 5", 133},
        {"&", "1", 129},  // where the digits are on the shifted side
        {"Left", "Left", 148},
        {"Right", "Right", 149},
        {"Up", "Up", 150},
        {"Down", "Down", 151},
        {"Return", "Return", 155},
        {"Keypad Enter", "Keypad Enter", 155},
        {"Backspace", "Backspace", 154},
        {"Escape", "Escape", 154},
        {"M", ";", 152},  // a letter counts where it is printed,
        {",", "M", 0},    // not where others have it
        {"F2", "F2", 152},
        {"S", "S", 146},
        {"F3", "F3", 146},
        {"E", "E", 147},
        {"F4", "F4", 147},
        {"O", "O", 153},
        {"F5", "F5", 153},
        {"F10", "F10", 0},
        {"Keypad +", "Keypad +", 0},
        {"Keypad 00", "Keypad 00", 0},
        {"", "", 0},
    };
    for (const Row& row : rows) EXPECT_EQ(keyCodeForKeyboard(row.name, row.place).value_or(0), row.code) << row.name;
}

// The help is written for people; it must not name a key that does something else.
TEST(Keyboard, DoesWhatItsHelpSays) {
    int named = 0;
    for (const KeyboardHelp& row : keyboardHelp) {
        const std::optional<std::uint8_t> code = keyCodeOf(row.meaning);
        if (!code) continue;
        std::string keys(row.keys);
        for (std::size_t at = 0; !keys.empty(); keys.erase(0, at == keys.npos ? at : at + 4)) {
            at = keys.find(" or ");
            const std::string name = keys.substr(0, at) == "Enter" ? "Return" : keys.substr(0, at);
            EXPECT_EQ(keyCodeForKeyboard(name, name), code) << name;
            ++named;
        }
    }
    EXPECT_EQ(named, 11);
}

TEST(Keyboard, HelpCanBeWrittenInTheBuiltInLetters) {
    std::set<Glyph> pictures;
    std::string characters = "abcdefghijklmnopqrstuvwxyz0123456789,.:-\x7F";  // the last has the box
    for (const char character : characters) EXPECT_TRUE(pictures.insert(glyphOf(character)).second) << character;
    for (const Glyph& picture : pictures)
        for (const std::uint8_t row : picture) EXPECT_EQ(row >> glyphWidth, 0);
    for (const KeyboardHelp& row : keyboardHelp)
        for (const char character : std::string(row.keys) + std::string(row.meaning))
            EXPECT_NE(glyphOf(character), glyphOf('\x7F')) << character;
}

}  // namespace
}  // namespace qel
