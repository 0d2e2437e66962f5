// Matrix arithmetic, bit for bit as the device does it.
#pragma once

#include "format/geometry.h"
#include "format/integers.h"

namespace qel {

// Maps a point; the result is rounded to whole pixels and wraps at 16 bits.
constexpr Point transformPoint(const Matrix& m, Point p) {
    const std::int32_t x = add32(add32(multiply32(p.x, m.a), multiply32(p.y, m.c)), 0x8000) >> 16;
    const std::int32_t y = add32(add32(multiply32(p.x, m.b), multiply32(p.y, m.d)), 0x8000) >> 16;
    return {wrap16(x + m.tx), wrap16(y + m.ty)};
}

// The matrix that applies `first` and then `second`.
constexpr Matrix product(const Matrix& first, const Matrix& second) {
    const auto sum = [](std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) {
        return add32(multiply16_16(a, b), multiply16_16(c, d));
    };
    const auto translation = [&](std::int32_t alongX, std::int32_t alongY, std::int16_t offset) {
        return wrap16(std::int64_t{multiply32(first.tx, alongX) >> 16} + (multiply32(first.ty, alongY) >> 16) + offset);
    };
    return {
        .a = sum(first.a, second.a, first.b, second.c),
        .b = sum(first.a, second.b, first.b, second.d),
        .c = sum(first.c, second.a, first.d, second.c),
        .d = sum(first.c, second.b, first.d, second.d),
        .tx = translation(second.a, second.c, second.tx),
        .ty = translation(second.b, second.d, second.ty),
    };
}

// Whether two matrices differ in nothing but their translation.
constexpr bool sameLinearPart(const Matrix& m, const Matrix& n) {
    return m.a == n.a && m.b == n.b && m.c == n.c && m.d == n.d;
}

// Maps the stage (`width` x `height` pixels, both at least 1) into a screen: at scale 1 in the middle where it fits and
// `fit` is off, otherwise scaled to touch two sides.
constexpr Matrix stageToScreen(std::int32_t width, std::int32_t height, std::int32_t screenWidth,
                               std::int32_t screenHeight, bool fit) {
    Matrix m = identityMatrix;
    if (!fit && screenWidth > width && screenHeight > height) {
        m.tx = wrap16((screenWidth - width) >> 1);
        m.ty = wrap16((screenHeight - height) >> 1);
        return m;
    }
    const std::int64_t acrossStage = std::int64_t{height} * screenWidth,
                       acrossScreen = std::int64_t{width} * screenHeight;
    if (acrossStage <= acrossScreen) {
        m.a = m.d = wrap32((std::int64_t{screenWidth} << 16) / width);
        m.ty = wrap16((((acrossScreen - acrossStage) / width) + 1) >> 1);
    } else {
        m.a = m.d = wrap32((std::int64_t{screenHeight} << 16) / height);
        m.tx = wrap16((((acrossStage - acrossScreen) / height) + 1) >> 1);
    }
    return m;
}

}  // namespace qel
