#include "script/matrix_parts.h"

#include <cmath>

#include "format/integers.h"
#include "script/numbers.h"

namespace qel {
namespace {

constexpr double toRadians = 0.01745328888888889, toDegrees = 57.29579143313326;

double fromFixed(std::int32_t value) { return (value >> 16) + (value & 0xFFFF) / 65536.0; }

std::int32_t toFixed(double value) {
    const double whole = truncated(value);
    const auto fraction = static_cast<std::int32_t>(toInt32((value - whole) * 65536));
    return wrap32((std::int64_t{toInt32(whole)} * 65536) + fraction);
}

// One axis: how long it is and where it points. `turned` is the angle of a positive second part.
void decompose(double first, double second, double positive, double negative, double& scale, double& angle) {
    if (first == 0) {
        scale = second < 0 ? -second : second;
        angle = second == 0 ? 0 : second > 0 ? positive : negative;
        return;
    }
    angle = std::atan(second / first) * toDegrees;
    scale = first / std::cos(angle * toRadians);
    if (first < 0) {
        scale = -scale;
        angle += 180;
    }
}

}  // namespace

MatrixParts partsOf(const Matrix& matrix) {
    MatrixParts parts;
    decompose(fromFixed(matrix.a), fromFixed(matrix.b), 90, 270, parts.xScale, parts.rotation);
    decompose(fromFixed(matrix.d), -fromFixed(matrix.c), 90, 270, parts.yScale, parts.skew);
    return parts;
}

Matrix matrixOf(const MatrixParts& parts, const Matrix& translation) {
    Matrix matrix = translation;
    const double rotation = parts.rotation * toRadians, skew = parts.skew * toRadians;
    matrix.a = toFixed(std::cos(rotation) * parts.xScale);
    matrix.b = toFixed(std::sin(rotation) * parts.xScale);
    matrix.c = toFixed(-std::sin(skew) * parts.yScale);
    matrix.d = toFixed(std::cos(skew) * parts.yScale);
    return matrix;
}

}  // namespace qel
