// Small built-in letters for what a window has to say over its picture.
#pragma once

#include <array>
#include <cstdint>

namespace qel {

inline constexpr int glyphWidth = 5, glyphHeight = 7;

// The rows of a character's picture, top to bottom; in each the leftmost pixel is bit 4. ASCII letters are drawn as
// capitals; what the font does not have is a box, a space is empty.
using Glyph = std::array<std::uint8_t, glyphHeight>;
const Glyph& glyphOf(char character);

}  // namespace qel
