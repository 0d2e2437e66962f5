// A clip's matrix as scripts see it: scales, rotation and skew in degrees.
#pragma once

#include "format/geometry.h"

namespace qel {

struct MatrixParts {
    double xScale = 0, yScale = 0;  // 1 is unscaled
    double rotation = 0, skew = 0;  // degrees, of the horizontal and of the vertical axis
};

MatrixParts partsOf(const Matrix& matrix);

// The matrix of these parts with the translation of another.
Matrix matrixOf(const MatrixParts& parts, const Matrix& translation);

}  // namespace qel
