// Outlines of SVG pictures: path data and basic shapes, as lines and quadratic curves.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "author/svg_transform.h"

namespace qel::author {

struct SvgStep {
    SvgPoint to;
    SvgPoint control;  // of a curve
    bool curve = false;
};

struct SvgSubPath {
    SvgPoint start;
    std::vector<SvgStep> steps;
    bool closed = false;
};

// Draws outlines under a transform. Cubic curves and arcs become quadratic curves that stay within half a pixel of
// them.
class SvgOutline {
  public:
    explicit SvgOutline(const SvgTransform& transform) : transform_(transform) {}

    void moveTo(SvgPoint to);
    void lineTo(SvgPoint to);
    void quadTo(SvgPoint control, SvgPoint to);
    void cubicTo(SvgPoint first, SvgPoint second, SvgPoint to);
    struct Arc {
        double radiusX = 0, radiusY = 0, rotation = 0;  // degrees
        bool large = false, clockwise = false;
    };
    void arcTo(const Arc& arc, SvgPoint to);
    void close();

    SvgPoint pen() const { return pen_; }
    std::vector<SvgSubPath> take() { return std::move(paths_); }

  private:
    SvgSubPath& current();
    void addStep(const SvgStep& step);

    SvgTransform transform_;
    SvgPoint pen_, start_;  // before the transform
    std::vector<SvgSubPath> paths_;
};

// Draws path data. What cannot be read ends it, as browsers do; false then.
bool drawSvgPath(SvgOutline& outline, std::string_view data);

struct SvgBox {
    double x = 0, y = 0, width = 0, height = 0;
};
SvgBox boundsOf(std::span<const SvgSubPath> paths);

// Whether sub-paths that run round in one direction lie over each other. By the even-odd rule they make holes.
bool overlapsItself(std::span<const SvgSubPath> paths);

void drawSvgEllipse(SvgOutline& outline, SvgPoint centre, double radiusX, double radiusY);
void drawSvgRectangle(SvgOutline& outline, const SvgBox& box, double radiusX, double radiusY);

}  // namespace qel::author
