// The plain values of the format's geometry and colour arithmetic, as they are held once read.
#pragma once

#include <cstdint>

namespace qel {

struct Point {
    std::int16_t x = 0, y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

// Whether the maximum belongs to the rectangle depends on its use; the user says so.
struct Rect {
    std::int16_t xMin = 0, yMin = 0, xMax = 0, yMax = 0;
    friend bool operator==(const Rect&, const Rect&) = default;
};

// Maps x' = a*x + c*y + tx, y' = b*x + d*y + ty. a to d are 16.16 fixed point, tx and ty pixels.
struct Matrix {
    std::int32_t a = 0, b = 0, c = 0, d = 0;
    std::int16_t tx = 0, ty = 0;
    friend bool operator==(const Matrix&, const Matrix&) = default;
};

inline constexpr std::int32_t fixedOne = 0x10000;
inline constexpr Matrix identityMatrix{.a = fixedOne, .d = fixedOne};

// channel' = channel * multiplier / 256 + offset
struct ColourTransform {
    std::uint16_t redMultiplier = 256, greenMultiplier = 256, blueMultiplier = 256, alphaMultiplier = 256;
    std::int16_t redOffset = 0, greenOffset = 0, blueOffset = 0, alphaOffset = 0;
    friend bool operator==(const ColourTransform&, const ColourTransform&) = default;
};

}  // namespace qel
