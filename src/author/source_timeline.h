// Compiles the frames of a movie source: people place instances by name and move, tween and remove them; content wants
// positions in the drawing order, which shift with everything that comes and goes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "author/records.h"
#include "author/source_document.h"

namespace qel::author {

// What placing a character needs to know of it.
struct PlacedCharacter {
    std::uint16_t id = 0;
    bool isSprite = false;
};

// One frame record and what the source says beside it.
struct CompiledFrame {
    Bytes items;
    bool isKey = false;
    std::optional<std::string> label;
    std::optional<std::uint32_t> background;  // 0xRRGGBB, from this frame on
};

// The matrix that [a, b, c, d, tx, ty] says. Throws SourceError.
Matrix readMatrix(const SourceValue& value);

// `findCharacter` answers for the name in a value, or throws SourceError.
using FindCharacter = std::function<PlacedCharacter(const SourceValue& name)>;

// Throws SourceError.
std::vector<CompiledFrame> compileFrames(const SourceValue& frames, const FindCharacter& findCharacter);

}  // namespace qel::author
