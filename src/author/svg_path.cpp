#include "author/svg_path.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <string>
#include <utility>

namespace qel::author {
namespace {

constexpr double pi = std::numbers::pi;

SvgPoint operator+(SvgPoint a, SvgPoint b) { return {a.x + b.x, a.y + b.y}; }
SvgPoint operator-(SvgPoint a, SvgPoint b) { return {a.x - b.x, a.y - b.y}; }
SvgPoint operator*(double k, SvgPoint p) { return {k * p.x, k * p.y}; }
double length(SvgPoint p) { return std::hypot(p.x, p.y); }
SvgPoint mix(SvgPoint a, SvgPoint b, double t) { return (1 - t) * a + t * b; }

struct Cubic {
    SvgPoint start, first, second, end;
};

// The part of a cubic from parameter 0 to t, and from t on.
std::pair<Cubic, Cubic> split(const Cubic& c, double t) {
    const SvgPoint ab = mix(c.start, c.first, t), bc = mix(c.first, c.second, t), cd = mix(c.second, c.end, t);
    const SvgPoint abc = mix(ab, bc, t), bcd = mix(bc, cd, t), middle = mix(abc, bcd, t);
    return {{c.start, ab, abc, middle}, {middle, bcd, cd, c.end}};
}

// How many equal parts of a cubic are needed so that a quadratic curve through the ends of each stays within half a
// pixel: the distance is sqrt(3)/36 of the third difference, which shrinks with the cube of the count.
int partsFor(const Cubic& c) {
    constexpr double tolerance = 0.5, mostParts = 64;
    const double third = length(c.end - c.start + 3 * (c.first - c.second));
    const double parts = std::ceil(std::cbrt(third * std::sqrt(3.0) / 36 / tolerance));
    return static_cast<int>(std::clamp(parts, 1.0, mostParts));
}

class PathData {
  public:
    PathData(SvgOutline& outline, std::string_view text) : outline_(outline), text_(text) {}

    bool draw() {
        for (;;) {
            skipSpace();
            if (text_.empty()) return true;
            if (std::isalpha(static_cast<unsigned char>(text_.front())) != 0) {
                command_ = text_.front();
                text_.remove_prefix(1);
                if (!begun_ && command_ != 'M' && command_ != 'm') return false;
                begun_ = true;
            } else if (command_ == 0 || command_ == 'Z' || command_ == 'z') {
                return false;
            }
            if (!takeSegment()) return false;
            if (command_ == 'M') command_ = 'L';
            if (command_ == 'm') command_ = 'l';
        }
    }

  private:
    void skipSpace() {
        const std::size_t begin = text_.find_first_not_of(" \t\r\n\f,");
        text_.remove_prefix(std::min(begin, text_.size()));
    }

    bool number(double& value) {
        skipSpace();
        if (text_.starts_with('+')) text_.remove_prefix(1);
        const auto [end, error] = std::from_chars(text_.data(), text_.data() + text_.size(), value);
        if (error != std::errc{} || !std::isfinite(value)) return false;
        text_.remove_prefix(static_cast<std::size_t>(end - text_.data()));
        return true;
    }

    bool flag(bool& value) {  // one digit, which another number may follow at once
        skipSpace();
        if (text_.empty() || (text_.front() != '0' && text_.front() != '1')) return false;
        value = text_.front() == '1';
        text_.remove_prefix(1);
        return true;
    }

    bool relative() const { return command_ >= 'a'; }

    bool point(SvgPoint& value) {
        if (!number(value.x) || !number(value.y)) return false;
        if (relative()) value = value + outline_.pen();
        return true;
    }

    bool takeSegment() {
        const std::optional<SvgPoint> cubicBefore = std::exchange(cubicControl_, std::nullopt);
        const std::optional<SvgPoint> quadBefore = std::exchange(quadControl_, std::nullopt);
        const SvgPoint pen = outline_.pen();
        const auto mirrored = [pen](const std::optional<SvgPoint>& before) { return before ? 2 * pen - *before : pen; };
        SvgPoint a, b, c;
        switch (std::toupper(static_cast<unsigned char>(command_))) {
            case 'Z': outline_.close(); return true;
            case 'M': return point(a) && (outline_.moveTo(a), true);
            case 'L': return point(a) && (outline_.lineTo(a), true);
            case 'H': return number(a.x) && (outline_.lineTo({relative() ? a.x + pen.x : a.x, pen.y}), true);
            case 'V': return number(a.y) && (outline_.lineTo({pen.x, relative() ? a.y + pen.y : a.y}), true);
            case 'Q': return point(a) && point(b) && quad(a, b);
            case 'T': return point(b) && quad(mirrored(quadBefore), b);
            case 'C': return point(a) && point(b) && point(c) && cubic(a, b, c);
            case 'S': return point(b) && point(c) && cubic(mirrored(cubicBefore), b, c);
            case 'A': return arc();
            default: return false;
        }
    }

    bool quad(SvgPoint control, SvgPoint to) {
        outline_.quadTo(control, to);
        quadControl_ = control;
        return true;
    }

    bool cubic(SvgPoint first, SvgPoint second, SvgPoint to) {
        outline_.cubicTo(first, second, to);
        cubicControl_ = second;
        return true;
    }

    bool arc() {
        SvgOutline::Arc arc;
        SvgPoint to;
        if (!number(arc.radiusX) || !number(arc.radiusY) || !number(arc.rotation) || !flag(arc.large) ||
            !flag(arc.clockwise) || !point(to))
            return false;
        outline_.arcTo(arc, to);
        return true;
    }

    SvgOutline& outline_;
    std::string_view text_;
    char command_ = 0;
    bool begun_ = false;
    std::optional<SvgPoint> cubicControl_, quadControl_;  // of the curve before
};

double areaOf(const SvgSubPath& path) {
    double area = 0;
    SvgPoint pen = path.start;
    for (const SvgStep& step : path.steps) {
        area += pen.x * step.to.y - step.to.x * pen.y;
        pen = step.to;
    }
    return area + pen.x * path.start.y - path.start.x * pen.y;
}

bool boxesOverlap(const SvgBox& a, const SvgBox& b) {
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

}  // namespace

SvgBox boundsOf(std::span<const SvgSubPath> paths) {
    double left = std::numeric_limits<double>::max(), top = left, right = -left, bottom = -left;
    const auto take = [&](SvgPoint p) {
        left = std::min(left, p.x), right = std::max(right, p.x);
        top = std::min(top, p.y), bottom = std::max(bottom, p.y);
    };
    for (const SvgSubPath& path : paths) {
        take(path.start);
        SvgPoint pen = path.start;
        for (const SvgStep& step : path.steps) {
            take(step.to);
            if (step.curve) take(0.25 * (pen + 2 * step.control + step.to));  // its middle
            pen = step.to;
        }
    }
    if (left > right) return {};
    return {left, top, right - left, bottom - top};
}

bool overlapsItself(std::span<const SvgSubPath> paths) {
    constexpr std::size_t most = 200;
    if (paths.size() < 2 || paths.size() > most) return false;
    for (std::size_t i = 0; i < paths.size(); ++i)
        for (std::size_t k = i + 1; k < paths.size(); ++k) {
            const bool sameWay = areaOf(paths[i]) * areaOf(paths[k]) > 0;
            if (sameWay && boxesOverlap(boundsOf(paths.subspan(i, 1)), boundsOf(paths.subspan(k, 1)))) return true;
        }
    return false;
}

SvgSubPath& SvgOutline::current() {
    if (paths_.empty() || paths_.back().closed) {
        paths_.push_back({.start = transform_(pen_), .steps = {}});
        start_ = pen_;
    }
    return paths_.back();
}

void SvgOutline::addStep(const SvgStep& step) {
    current().steps.push_back({transform_(step.to), transform_(step.control), step.curve});
    pen_ = step.to;
}

void SvgOutline::moveTo(SvgPoint to) {
    pen_ = start_ = to;
    paths_.push_back({.start = transform_(to), .steps = {}});
}

void SvgOutline::lineTo(SvgPoint to) { addStep({.to = to, .control = to}); }

void SvgOutline::quadTo(SvgPoint control, SvgPoint to) { addStep({.to = to, .control = control, .curve = true}); }

void SvgOutline::cubicTo(SvgPoint first, SvgPoint second, SvgPoint to) {
    Cubic rest{pen_, first, second, to};
    const Cubic onScreen{transform_(pen_), transform_(first), transform_(second), transform_(to)};
    for (int parts = partsFor(onScreen); parts > 0; --parts) {
        const auto [part, behind] = split(rest, 1.0 / parts);
        quadTo(0.25 * (3 * (part.first + part.second) - part.start - part.end), part.end);
        rest = behind;
    }
    pen_ = to;
}

// By way of the ellipse's middle, as the standard for such pictures does it; quarters of it become cubic curves.
void SvgOutline::arcTo(const Arc& arc, SvgPoint to) {
    double radiusX = std::abs(arc.radiusX), radiusY = std::abs(arc.radiusY);
    const SvgPoint from = pen_;
    if (radiusX == 0 || radiusY == 0 || length(to - from) == 0) return lineTo(to);
    const double turn = arc.rotation * pi / 180, cosine = std::cos(turn), sine = std::sin(turn);
    const SvgPoint half = 0.5 * (from - to);
    const SvgPoint p{cosine * half.x + sine * half.y, cosine * half.y - sine * half.x};
    const double tooFar = std::hypot(p.x / radiusX, p.y / radiusY);
    if (tooFar > 1) {
        radiusX *= tooFar;
        radiusY *= tooFar;
    }
    const double across = radiusX * p.y, down = radiusY * p.x, both = across * across + down * down;
    const double square = std::max(0.0, radiusX * radiusX * radiusY * radiusY - both) / both;
    const double side = (arc.large == arc.clockwise ? -1 : 1) * std::sqrt(square);
    const SvgPoint middle{side * radiusX * p.y / radiusY, -side * radiusY * p.x / radiusX};
    const auto angleOf = [&](SvgPoint q) { return std::atan2((q.y - middle.y) / radiusY, (q.x - middle.x) / radiusX); };
    const double begin = angleOf(p);
    double sweep = angleOf({-p.x, -p.y}) - begin;
    if (arc.clockwise && sweep < 0) sweep += 2 * pi;
    if (!arc.clockwise && sweep > 0) sweep -= 2 * pi;

    const SvgPoint centre =
        0.5 * (from + to) + SvgPoint{cosine * middle.x - sine * middle.y, sine * middle.x + cosine * middle.y};
    const auto onEllipse = [&](double x, double y) {
        return centre + SvgPoint{cosine * radiusX * x - sine * radiusY * y, sine * radiusX * x + cosine * radiusY * y};
    };
    const int quarters = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / (pi / 2) - 1e-9)));
    const double step = sweep / quarters, reach = 4.0 / 3 * std::tan(step / 4);
    for (int i = 0; i < quarters; ++i) {
        const double a = begin + i * step, b = a + step;
        cubicTo(onEllipse(std::cos(a) - reach * std::sin(a), std::sin(a) + reach * std::cos(a)),
                onEllipse(std::cos(b) + reach * std::sin(b), std::sin(b) - reach * std::cos(b)),
                i + 1 == quarters ? to : onEllipse(std::cos(b), std::sin(b)));
    }
}

void SvgOutline::close() {
    if (paths_.empty() || paths_.back().closed) return;
    paths_.back().closed = true;
    pen_ = start_;
}

bool drawSvgPath(SvgOutline& outline, std::string_view data) { return PathData(outline, data).draw(); }

void drawSvgEllipse(SvgOutline& outline, SvgPoint centre, double radiusX, double radiusY) {
    const SvgOutline::Arc half{.radiusX = radiusX, .radiusY = radiusY, .clockwise = true};
    outline.moveTo({centre.x + radiusX, centre.y});
    outline.arcTo(half, {centre.x - radiusX, centre.y});
    outline.arcTo(half, {centre.x + radiusX, centre.y});
    outline.close();
}

void drawSvgRectangle(SvgOutline& outline, const SvgBox& box, double radiusX, double radiusY) {
    radiusX = std::clamp(radiusX, 0.0, box.width / 2);
    radiusY = std::clamp(radiusY, 0.0, box.height / 2);
    const double right = box.x + box.width, bottom = box.y + box.height;
    const bool round = radiusX > 0 && radiusY > 0;
    const SvgOutline::Arc corner{.radiusX = radiusX, .radiusY = radiusY, .clockwise = true};
    const auto turn = [&](SvgPoint to) {
        if (round) outline.arcTo(corner, to);
    };
    if (!round) radiusX = radiusY = 0;
    outline.moveTo({box.x + radiusX, box.y});
    outline.lineTo({right - radiusX, box.y});
    turn({right, box.y + radiusY});
    outline.lineTo({right, bottom - radiusY});
    turn({right - radiusX, bottom});
    outline.lineTo({box.x + radiusX, bottom});
    turn({box.x, bottom - radiusY});
    outline.lineTo({box.x, box.y + radiusY});
    turn({box.x + radiusX, box.y});
    outline.close();
}

}  // namespace qel::author
