// Affine maps of pictures in SVG, and the `transform` attribute.
#pragma once

#include <stdexcept>
#include <string_view>
#include <vector>

namespace qel::author {

// What is wrong with a picture.
struct SvgError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct SvgPoint {
    double x = 0, y = 0;
};

// x' = a*x + c*y + e, y' = b*x + d*y + f
struct SvgTransform {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    SvgPoint operator()(SvgPoint p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    double scale() const;  // how much longer lines become, on average
};

// Applies `inner` first.
SvgTransform operator*(const SvgTransform& outer, const SvgTransform& inner);

// Numbers between white space and commas, as far as they go.
std::vector<double> svgNumbers(std::string_view text);

// The value of a `transform` attribute. Throws SvgError.
SvgTransform parseSvgTransform(std::string_view text);

}  // namespace qel::author
