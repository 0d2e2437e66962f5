// A morph shape character: the shapes that it begins and ends as, and the pairs of styles that change into each other.
#pragma once

#include "movie/character.h"
#include "movie/content_reader.h"

namespace qel {

struct StylePair {
    std::uint16_t start = noCharacter, end = noCharacter;
};

struct MorphShape : Character {
    std::uint16_t startId = noCharacter, endId = noCharacter;
    PoolArray<StylePair> pairs;
};

// Decodes the body behind its identifier. Null in `morph` with outOfMemory or brokenDefinition.
Result defineMorphShape(ContentReader body, Pool& pool, PoolPtr<MorphShape>& morph);

}  // namespace qel
