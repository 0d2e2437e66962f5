#include "render/stroke.h"

#include "render/curve.h"
#include "render/line.h"

namespace qel {
namespace {

constexpr std::uint8_t leastThickWidth = 5;  // shapes whose widest line is that wide have joined lines

struct StrokePass {
    Pen pen;
    bool thick = false;
    Point previousEnd{-128, -128};
    LineDirection last = LineDirection::none;
};

void takeLine(StrokePass& pass, Point start, Point end, bool joined) {
    const LineDirection drawn =
        joined ? drawJoinedLine(pass.pen, start, end, pass.last) : drawLine(pass.pen, start, end);
    if (drawn != LineDirection::none) pass.last = drawn;
    pass.previousEnd = end;
}

void strokeCurve(StrokePass& pass, const PathSegment& curve, bool joined) {
    const std::int32_t step = curveStep(curve.start, curve.middle, curve.end);
    Point from = curve.start;
    for (std::int32_t t = step; t < curveEnd; t += step) {
        const Point to = curvePoint(curve.start, curve.middle, curve.end, t);
        if (to == from) continue;
        takeLine(pass, from, to, joined);
        from = to;
    }
    if (!(from == curve.end)) takeLine(pass, from, curve.end, joined);
}

void strokeSegment(StrokePass& pass, const PathSegment& segment) {
    const bool joined = pass.thick && segment.start == pass.previousEnd;
    if (segment.straight)
        takeLine(pass, segment.start, segment.end, joined);
    else
        strokeCurve(pass, segment, joined);
}

}  // namespace

void strokeShape(RenderContext& context, const ShapeGeometry& geometry, const PlacedShape& placed, const Rect& clip) {
    StrokePass pass{.pen = {.context = context, .screen = screenRect(context), .clip = clip},
                    .thick = geometry.maximumLineWidth >= leastThickWidth};
    const std::span<const PathSegment> segments = placed.segments.span();
    std::uint32_t next = 0;
    for (const StyleGroup& group : geometry.groups) {
        const auto end = std::min<std::uint32_t>(group.end, static_cast<std::uint32_t>(segments.size()));
        const LineStyle* style = lineDrawn(geometry, placed, group);
        if (!style) {
            next = std::max(next, end);
            continue;
        }
        pass.pen.colour = style->colour;
        pass.pen.alpha = style->alpha;
        pass.pen.width = style->width;
        for (; next < end; ++next) strokeSegment(pass, segments[next]);
    }
}

}  // namespace qel
