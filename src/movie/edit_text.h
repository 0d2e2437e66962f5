// A text field character: where its text stands, how it looks, and the text it begins with.
#pragma once

#include <array>

#include "format/geometry.h"
#include "movie/character.h"
#include "movie/content_reader.h"

namespace qel {

struct EditText : Character {
    static constexpr std::uint16_t hasVariable = 0x200;
    static constexpr std::uint16_t hasKept = 0x100;

    Rect bounds;
    std::uint16_t flags = 0;
    PoolText variable;       // whose value the field shows; empty: none
    std::uint16_t kept = 0;  // with hasKept
    std::array<std::uint8_t, 3> settings{};
    std::uint16_t colour = 0;  // RGB565
    std::uint8_t lastSetting = 0;
    PoolText text;
};

// Reads a whole body.
Result defineEditText(ContentReader body, Pool& pool, PoolPtr<EditText>& field);

}  // namespace qel
