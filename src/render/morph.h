// A morph at one moment: a shape of its own between the two that it begins and ends as.
#pragma once

#include "render/morph_shape.h"
#include "render/shape.h"

namespace qel {

// One of the styles of the two shapes that are in a morph's own.
struct MorphStyle {
    CharacterHold<Character> start, end;
    Character* between = nullptr;  // of the morph's own fills or lines
    std::uint16_t index = 0;       // there
};

struct Morph {
    CharacterHold<Shape> start, end;
    ShapeGeometry geometry;              // between them; its interpolated styles are its own
    PoolArray<MorphStyle> interpolated;  // the styles that change
    std::uint16_t ratio = 0;             // 0: the start shape, 32768: the end shape; beyond it the change goes on
};

// Makes the shape between `morph.start` and `morph.end`, which are set. Styles that both shapes name at one place are
// used as they are; others change where `pairs` has them together, and are left out where it has not. The shape is
// that of ratio 0 until the first updateMorph. outOfMemory: the morph cannot be used.
Result makeMorph(const MorphShape& character, Pool& pool, Morph& morph);

// Brings segments and styles to the morph's ratio.
void updateMorph(Morph& morph);

}  // namespace qel
