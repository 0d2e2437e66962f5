// The names of styles in a shape become the style characters that they name.
#pragma once

#include "movie/dictionary.h"
#include "render/shape.h"

namespace qel {

// Looks up every style that the groups of a shape name, each once. brokenDefinition: one cannot be had or is of another
// kind, which makes the shape unusable.
Result resolveStyles(CharacterDictionary& dictionary, ShapeGeometry& geometry);

}  // namespace qel
