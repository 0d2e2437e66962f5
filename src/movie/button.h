// Button characters. Neither kind is pressed by pointing: a button has the focus or not, and keys do the rest.
#pragma once

#include <array>

#include "movie/character.h"
#include "movie/command_list.h"
#include "movie/content_reader.h"

namespace qel {

enum class ButtonState : std::uint8_t { up = 0, over = 1, down = 2 };

// What both kinds have: the character that each state shows.
struct ButtonCharacter : Character {
    std::array<std::uint16_t, 3> looks{noCharacter, noCharacter, noCharacter};  // by ButtonState

    std::uint16_t look(ButtonState state) const { return looks[static_cast<std::size_t>(state)]; }
};

// Action code of a button, and what starts it.
struct ButtonCondition {
    bool onFocusLost = false;
    bool onFocusGained = false;
    bool hasFocusedKey = false;  // a key, while the button has the focus
    bool hasAnyTimeKey = false;  // a key, whatever has the focus
    std::uint8_t focusedKey = 0, anyTimeKey = 0;
    PoolArray<std::uint8_t> code;  // with a zero behind it
    std::uint32_t filled = 0;      // bytes of the code that are there
};

struct Button : ButtonCharacter {
    PoolArray<ButtonCondition> conditions;  // in file order
    std::uint32_t bytesLeft = 0;            // of the conditions, not yet read
};

struct CommandButton : ButtonCharacter {
    std::uint8_t key = 0;  // what runs the commands while the button has the focus
    CommandList commands;
};

// Reads the head of a button's body of `bodyLength` bytes; the reader is left on the conditions.
Result beginButton(ContentReader& body, std::uint32_t bodyLength, Pool& pool, PoolPtr<Button>& button);

// Takes as much of the conditions as `reader` holds. `done` when all are complete, `nothing` when more bytes are due;
// brokenDefinition: a condition runs past the body.
Result continueButton(Button& button, ContentReader& reader, Pool& pool);

// Reads a whole body.
Result defineCommandButton(ContentReader body, Pool& pool, PoolPtr<CommandButton>& button);

}  // namespace qel
