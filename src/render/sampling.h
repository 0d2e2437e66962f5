// From the pixels of the screen back to the plane of a fill.
#pragma once

#include "format/geometry.h"
#include "format/integers.h"
#include "render/matrix.h"

namespace qel {

// Maps a pixel to a point of the fill's plane (16.16): u = (x + tx) * a + (y + ty) * c, v = (x + tx) * b + (y + ty) *
// d.
struct SamplingMatrix {
    std::int32_t a = 0, b = 0, c = 0, d = 0;
    std::int16_t tx = 0, ty = 0;
};

struct SamplePoint {
    std::int32_t u = 0, v = 0;  // 16.16
};

constexpr SamplePoint sampleAt(const SamplingMatrix& m, std::int32_t x, std::int32_t y) {
    const std::int32_t fromX = x + m.tx, fromY = y + m.ty;
    return {add32(multiply32(fromX, m.a), multiply32(fromY, m.c)),
            add32(multiply32(fromX, m.b), multiply32(fromY, m.d))};
}

// The inverse of the way from the fill's plane to the shape and from there to the screen. A way that flattens the
// plane is taken as having the least determinant.
constexpr SamplingMatrix samplingMatrix(const Matrix& fill, const Matrix& screen) {
    const Matrix way = product(fill, screen);
    const std::int32_t flat = subtract32(multiply16_16(way.a, way.d), multiply16_16(way.c, way.b));
    const std::int64_t determinant = flat == 0 ? 1 : flat;
    const auto over = [determinant](std::int32_t value) { return (std::int64_t{value} << 16) / determinant; };
    return {.a = wrap32(over(way.d)),
            .b = wrap32(-over(way.b)),
            .c = wrap32(-over(way.c)),
            .d = wrap32(over(way.a)),
            .tx = wrap16(-way.tx),
            .ty = wrap16(-way.ty)};
}

}  // namespace qel
