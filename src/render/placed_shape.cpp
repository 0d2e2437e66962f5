#include "render/placed_shape.h"

#include <algorithm>
#include <limits>

#include "render/matrix.h"

namespace qel {
namespace {

GrowingBox boundOutline(std::span<const PathSegment> segments) {
    GrowingBox box;
    for (const PathSegment& segment : segments) {
        box.take(segment.start);
        if (!segment.straight) box.take(segment.middle);
        box.take(segment.end);
    }
    return box;
}

// What the lines of the shape can reach around its outline.
Rect grow(const GrowingBox& box, std::uint8_t maximumLineWidth) {
    if (box.empty()) return {0, 0, -1, -1};
    const int by = (maximumLineWidth >> 1) + 1;
    const auto within = [](int value) {
        using Limits = std::numeric_limits<std::int16_t>;
        return static_cast<std::int16_t>(std::clamp<int>(value, Limits::min(), Limits::max()));
    };
    return {within(box.xMin - by), within(box.yMin - by), within(box.xMax + by), within(box.yMax + by)};
}

Point moved(Point point, int dx, int dy) { return {wrap16(point.x + dx), wrap16(point.y + dy)}; }

bool staysInRange(const Rect& box, int dx, int dy) {
    const Point low = moved({box.xMin, box.yMin}, dx, dy), high = moved({box.xMax, box.yMax}, dx, dy);
    return low.x == box.xMin + dx && low.y == box.yMin + dy && high.x == box.xMax + dx && high.y == box.yMax + dy;
}

Rect movedRect(const Rect& box, int dx, int dy) {
    const Point low = moved({box.xMin, box.yMin}, dx, dy), high = moved({box.xMax, box.yMax}, dx, dy);
    return {low.x, low.y, high.x, high.y};
}

void translate(PlacedShape& placed, int dx, int dy, Rect& bounds) {
    for (PathSegment& segment : placed.segments)
        for (Point* point : {&segment.start, &segment.middle, &segment.end}) *point = moved(*point, dx, dy);
    for (FillEdge& edge : placed.table.edges)
        for (Point* point : {&edge.start, &edge.control, &edge.end}) *point = moved(*point, dx, dy);
    placed.table.top = wrap16(placed.table.top + dy);
    placed.table.bottom = wrap16(placed.table.bottom + dy);
    placed.outline = movedRect(placed.outline, dx, dy);
    bounds = movedRect(bounds, dx, dy);
}

Point transformCutOff(const Matrix& m, Point p) {
    const std::int32_t x = add32(multiply32(m.c, p.y) >> 16, multiply32(m.a, p.x) >> 16);
    const std::int32_t y = add32(multiply32(m.b, p.x) >> 16, multiply32(m.d, p.y) >> 16);
    return {wrap16(std::int64_t{x} + m.tx), wrap16(std::int64_t{y} + m.ty)};
}

Result transform(const ShapeGeometry& geometry, const Matrix& matrix, PointRounding rounding, Pool& pool,
                 PoolArray<PathSegment>& segments) {
    if (failed(segments.assign(pool, geometry.segments.span()))) return Result::outOfMemory;
    const auto bring = [&](auto&& map) {
        for (PathSegment& segment : segments)
            for (Point* point : {&segment.start, &segment.middle, &segment.end}) *point = map(matrix, *point);
    };
    if (rounding == PointRounding::nearest)
        bring(transformPoint);
    else
        bring(transformCutOff);
    return Result::done;
}

// The instance's fills begin as the shape's.
Result makeFills(const ShapeGeometry& geometry, Pool& pool, PoolArray<PlacedFill>& fills) {
    if (failed(fills.reserve(pool, geometry.fills.size()))) return Result::outOfMemory;
    for (const FillUse& use : geometry.fills) {
        PlacedFill fill;
        fill.style = use.style.get();
        fills.appendReserved(std::move(fill));
    }
    return Result::done;
}

void placeFills(const ShapeGeometry& geometry, const Matrix& screenMatrix, PoolArray<PlacedFill>& fills) {
    for (std::uint32_t i = 0; i < fills.size(); ++i) {
        const FillStyle& style = *geometry.fills[i].style;
        if (style.fillKind == FillKind::gradient)
            fills[i].sampling = samplingMatrix(static_cast<const GradientFill&>(style).matrix, screenMatrix);
        if (style.fillKind == FillKind::bitmap)
            fills[i].sampling = samplingMatrix(static_cast<const BitmapFill&>(style).matrix, screenMatrix);
    }
}

Result transformAnew(const ShapeGeometry& geometry, const Matrix& screenMatrix, PointRounding rounding, Pool& pool,
                     PlacedShape& placed, Rect& bounds) {
    placed.transformed = false;
    placed.table.edges.truncate(0);
    if (failed(transform(geometry, screenMatrix, rounding, pool, placed.segments))) return Result::outOfMemory;
    const GrowingBox outline = boundOutline(placed.segments.span());
    placed.outline = outline.empty() ? Rect{} : Rect{outline.xMin, outline.yMin, outline.xMax, outline.yMax};
    GrowingBox box = geometry.hasFill ? GrowingBox{} : outline;
    if (geometry.hasFill && failed(buildEdges(geometry, placed.segments.span(), pool, placed.table, box)))
        return Result::outOfMemory;
    bounds = grow(box, geometry.maximumLineWidth);
    placed.transformed = true;
    return Result::done;
}

}  // namespace

Result placeShape(const ShapeGeometry& geometry, const Matrix& screenMatrix, PointRounding rounding, Pool& pool,
                  PlacedShape& placed, Rect& bounds) {
    if (placed.fills.empty() && failed(makeFills(geometry, pool, placed.fills))) return Result::outOfMemory;
    const int dx = screenMatrix.tx - placed.transformedWith.tx, dy = screenMatrix.ty - placed.transformedWith.ty;
    // Points that would wrap round are better made anew: their edges must keep running downward.
    const bool movesOnly = placed.transformed && sameLinearPart(placed.transformedWith, screenMatrix) &&
                           staysInRange(placed.outline, dx, dy) && staysInRange(bounds, dx, dy);
    if (movesOnly)
        translate(placed, dx, dy, bounds);
    else if (failed(transformAnew(geometry, screenMatrix, rounding, pool, placed, bounds)))
        return Result::outOfMemory;
    placed.transformedWith = screenMatrix;
    placeFills(geometry, screenMatrix, placed.fills);
    return Result::done;
}

const LineStyle* lineDrawn(const ShapeGeometry& geometry, const PlacedShape& placed, const StyleGroup& group) {
    if (group.line == StyleGroup::none) return nullptr;
    return placed.recoloured ? placed.lines[group.line].own.get() : geometry.lines[group.line].style.get();
}

}  // namespace qel
