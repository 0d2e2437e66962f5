#include "author/svg_transform.h"

#include <charconv>
#include <cmath>
#include <numbers>
#include <string>

namespace qel::author {
namespace {

constexpr std::string_view separators = " \t\r\n\f,";

constexpr double radians(double degrees) { return degrees * std::numbers::pi / 180; }

SvgTransform rotation(double degrees) {
    const double sine = std::sin(radians(degrees)), cosine = std::cos(radians(degrees));
    return {cosine, sine, -sine, cosine, 0, 0};
}

SvgTransform oneTransform(std::string_view name, const std::vector<double>& v) {
    const auto at = [&v](std::size_t i, double otherwise) { return i < v.size() ? v[i] : otherwise; };
    if (name == "matrix" && v.size() == 6) return {v[0], v[1], v[2], v[3], v[4], v[5]};
    if (name == "translate" && !v.empty()) return {1, 0, 0, 1, v[0], at(1, 0)};
    if (name == "scale" && !v.empty()) return {v[0], 0, 0, at(1, v[0]), 0, 0};
    if (name == "skewX" && !v.empty()) return {1, 0, std::tan(radians(v[0])), 1, 0, 0};
    if (name == "skewY" && !v.empty()) return {1, std::tan(radians(v[0])), 0, 1, 0, 0};
    if (name == "rotate" && !v.empty()) {
        const double x = at(1, 0), y = at(2, 0);
        return SvgTransform{1, 0, 0, 1, x, y} * rotation(v[0]) * SvgTransform{1, 0, 0, 1, -x, -y};
    }
    throw SvgError("\"" + std::string(name) + "\" is no transform with " + std::to_string(v.size()) + " numbers");
}

}  // namespace

double SvgTransform::scale() const { return std::sqrt(std::abs(a * d - b * c)); }

SvgTransform operator*(const SvgTransform& outer, const SvgTransform& inner) {
    const SvgPoint origin = outer({inner.e, inner.f});
    return {outer.a * inner.a + outer.c * inner.b,
            outer.b * inner.a + outer.d * inner.b,
            outer.a * inner.c + outer.c * inner.d,
            outer.b * inner.c + outer.d * inner.d,
            origin.x,
            origin.y};
}

std::vector<double> svgNumbers(std::string_view text) {
    std::vector<double> numbers;
    for (;;) {
        const std::size_t begin = text.find_first_not_of(separators);
        if (begin == std::string_view::npos) return numbers;
        text.remove_prefix(begin);
        if (text.front() == '+') text.remove_prefix(1);
        double number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc{} || !std::isfinite(number)) return numbers;
        numbers.push_back(number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    }
}

SvgTransform parseSvgTransform(std::string_view text) {
    SvgTransform whole;
    for (;;) {
        const std::size_t begin = text.find_first_not_of(separators);
        if (begin == std::string_view::npos) return whole;
        const std::size_t open = text.find('(', begin), close = text.find(')', begin);
        if (open == std::string_view::npos || close == std::string_view::npos || close < open)
            throw SvgError("the transform \"" + std::string(text.substr(begin, 40)) + "\" is not whole");
        std::string_view name = text.substr(begin, open - begin);
        name = name.substr(0, name.find_last_not_of(separators) + 1);
        whole = whole * oneTransform(name, svgNumbers(text.substr(open + 1, close - open - 1)));
        text.remove_prefix(close + 1);
    }
}

}  // namespace qel::author
