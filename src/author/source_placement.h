// Where an instance stands and how it is tinted, as movie sources say it.
#pragma once

#include <optional>

#include "author/source_document.h"
#include "format/geometry.h"

namespace qel::author {

struct Placement {
    double x = 0, y = 0;  // pixels
    double scaleX = 1, scaleY = 1;
    double rotate = 0;             // degrees, clockwise
    std::optional<Matrix> matrix;  // given as it is; then nothing else counts
};

// The fields that say where something stands.
inline constexpr std::string_view placementFields[] = {"x", "y", "scale", "scaleX", "scaleY", "rotate", "matrix"};

// Changes what the object names of a placement; true when it names anything. These throw SourceError.
bool readPlacement(const SourceValue& object, Placement& placement);
Matrix readMatrix(const SourceValue& value);  // [a, b, c, d, tx, ty]
ColourTransform readColourTransform(const SourceValue& object);

Matrix matrixOf(const Placement& placement);

}  // namespace qel::author
