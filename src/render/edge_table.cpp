#include "render/edge_table.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "render/fixed.h"
#include "render/matrix.h"

namespace qel {
namespace {

// A box that grows around points.
struct Bounds {
    std::int16_t xMin = std::numeric_limits<std::int16_t>::max(), yMin = std::numeric_limits<std::int16_t>::max();
    std::int16_t xMax = std::numeric_limits<std::int16_t>::min(), yMax = std::numeric_limits<std::int16_t>::min();

    bool empty() const { return xMin > xMax || yMin > yMax; }
    void takeX(std::int16_t x) {
        xMin = std::min(xMin, x);
        xMax = std::max(xMax, x);
    }
    void takeY(std::int16_t y) {
        yMin = std::min(yMin, y);
        yMax = std::max(yMax, y);
    }
    void take(Point point) {
        takeX(point.x);
        takeY(point.y);
    }
};

bool controlLiesOutside(const PathSegment& curve) {
    const auto [low, high] = std::minmax(curve.start.y, curve.end.y);
    return curve.middle.y < low || curve.middle.y > high;
}

std::uint32_t countEdges(std::span<const PathSegment> segments) {
    std::uint32_t count = 0;
    for (const PathSegment& segment : segments) {
        if (segment.straight)
            count += segment.start.y != segment.end.y ? 1 : 0;
        else
            count += controlLiesOutside(segment) ? 2 : 1;
    }
    return count;
}

// Appends an edge, turned round where it runs upward; a horizontal one crosses no row. There is room.
void emit(EdgeTable& table, FillEdge edge) {
    if (edge.start.y == edge.end.y) return;
    if (edge.start.y > edge.end.y) {
        std::swap(edge.start, edge.end);
        edge.direction = static_cast<std::int8_t>(-edge.direction);
    }
    table.edges.appendReserved(edge);
}

// A point `t` 256ths of the way.
Point between(Point from, Point to, std::int32_t t) {
    return {wrap16(from.x + (((to.x - from.x) * t) >> 8)), wrap16(from.y + (((to.y - from.y) * t) >> 8))};
}

// Where the curve turns from up to down, in 256ths of its parameter. 0 where it has no turn of its own.
std::int32_t turningParameter(Point start, Point control, Point end) {
    const std::int32_t rise = start.y - control.y;
    const std::int32_t bend = start.y - 2 * control.y + end.y;
    if (std::int64_t{rise} * bend <= 0 || std::abs(rise) >= std::abs(bend)) return 0;
    return fixedDivide(rise, bend) >> 8;
}

void emitCurve(EdgeTable& table, FillEdge edge, Bounds& bounds) {
    if (edge.start.y > edge.end.y) {
        std::swap(edge.start, edge.end);
        edge.direction = -1;
    }
    for (const Point point : {edge.start, edge.control, edge.end}) bounds.takeX(point.x);
    bounds.takeY(edge.start.y);
    bounds.takeY(edge.end.y);
    if (edge.control.y >= edge.start.y && edge.control.y <= edge.end.y) {
        if (edge.start.y != edge.end.y) table.edges.appendReserved(edge);
        return;
    }
    const std::int32_t t = turningParameter(edge.start, edge.control, edge.end);
    const Point firstControl = between(edge.start, edge.control, t);
    const Point secondControl = between(edge.control, edge.end, t);
    const Point turn = between(firstControl, secondControl, t);
    bounds.takeY(turn.y);
    FillEdge first = edge, second = edge;
    first.control = firstControl;
    first.end = turn;
    second.start = turn;
    second.control = secondControl;
    emit(table, first);
    emit(table, second);
}

// A segment that no fill touches is drawn only by its line.
void takeStroke(const PathSegment& segment, const StyleGroup& group, Bounds& bounds) {
    if (!group.line || group.line->width == 0) return;
    bounds.take(segment.start);
    if (!segment.straight) bounds.take(segment.middle);
    bounds.take(segment.end);
}

void takeSegment(PlacedShape& placed, const PathSegment& segment, const StyleGroup& group, Bounds& bounds) {
    EdgeTable& table = placed.table;
    if (!group.fill0 && !group.fill1) return takeStroke(segment, group, bounds);
    const FillEdge edge{.straight = segment.straight,
                        .direction = 1,
                        .start = segment.start,
                        .control = segment.middle,
                        .end = segment.end,
                        .fill0 = fillDrawn(placed, group.fill0.get()),
                        .fill1 = fillDrawn(placed, group.fill1.get())};
    if (!segment.straight) return emitCurve(table, edge, bounds);
    bounds.take(segment.start);
    bounds.take(segment.end);
    emit(table, edge);
}

// Room for the edges of a transform; the arrays grow and never shrink.
Result reserveEdges(EdgeTable& table, std::uint32_t count, Pool& pool) {
    table.edges.truncate(0);
    table.sorted.truncate(0);
    const std::uint32_t room = count + 1;  // the device ends both with a sentinel
    if (!failed(table.edges.reserve(pool, room)) && !failed(table.sorted.reserve(pool, room))) return Result::done;
    table.edges.clear();
    table.sorted.clear();
    return Result::outOfMemory;
}

Result buildEdges(const ShapeGeometry& geometry, Pool& pool, PlacedShape& placed, Bounds& bounds) {
    const std::span<const PathSegment> segments = placed.segments.span();
    EdgeTable& table = placed.table;
    if (failed(reserveEdges(table, countEdges(segments), pool))) return Result::outOfMemory;
    std::uint32_t next = 0;
    for (const StyleGroup& group : geometry.groups) {
        const std::uint32_t end = std::min<std::uint32_t>(group.end, static_cast<std::uint32_t>(segments.size()));
        for (; next < end; ++next) takeSegment(placed, segments[next], group, bounds);
    }
    for (FillEdge& edge : table.edges) table.sorted.appendReserved(&edge);
    std::sort(table.sorted.begin(), table.sorted.end(),
              [](const FillEdge* a, const FillEdge* b) { return a->start.y < b->start.y; });
    table.top = bounds.yMin;
    table.bottom = bounds.yMax;
    return Result::done;
}

void boundOutline(std::span<const PathSegment> segments, Bounds& bounds) {
    for (const PathSegment& segment : segments) {
        bounds.take(segment.start);
        if (!segment.straight) bounds.take(segment.middle);
        bounds.take(segment.end);
    }
}

// What the lines of the shape can reach around its outline.
Rect grow(const Bounds& bounds, std::uint8_t maximumLineWidth) {
    if (bounds.empty()) return {};
    const int by = (maximumLineWidth >> 1) + 1;
    const auto within = [](int value) {
        using Limits = std::numeric_limits<std::int16_t>;
        return static_cast<std::int16_t>(std::clamp<int>(value, Limits::min(), Limits::max()));
    };
    return {within(bounds.xMin - by), within(bounds.yMin - by), within(bounds.xMax + by), within(bounds.yMax + by)};
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

}  // namespace

FillStyle* fillDrawn(const PlacedShape& placed, FillStyle* fill) {
    for (const FillCopy& copy : placed.fillCopies)
        if (copy.source == fill) return copy.copy.get();
    return fill;
}

Result placeShape(const ShapeGeometry& geometry, const Matrix& screenMatrix, Pool& pool, PlacedShape& placed,
                  Rect& bounds) {
    const int dx = screenMatrix.tx - placed.transformedWith.tx, dy = screenMatrix.ty - placed.transformedWith.ty;
    // Points that would wrap round are better made anew: their edges must keep running downward.
    if (placed.transformed && sameLinearPart(placed.transformedWith, screenMatrix) &&
        staysInRange(placed.outline, dx, dy) && staysInRange(bounds, dx, dy)) {
        translate(placed, dx, dy, bounds);
        placed.transformedWith = screenMatrix;
        return Result::done;
    }
    placed.transformed = false;
    if (failed(placed.segments.assign(pool, geometry.segments.span()))) return Result::outOfMemory;
    for (PathSegment& segment : placed.segments)
        for (Point* point : {&segment.start, &segment.middle, &segment.end})
            *point = transformPoint(screenMatrix, *point);

    Bounds outline;
    boundOutline(placed.segments.span(), outline);
    placed.outline = outline.empty() ? Rect{} : Rect{outline.xMin, outline.yMin, outline.xMax, outline.yMax};
    Bounds box = geometry.hasFill ? Bounds{} : outline;
    if (geometry.hasFill) {
        if (failed(buildEdges(geometry, pool, placed, box))) return Result::outOfMemory;
    }
    bounds = grow(box, geometry.maximumLineWidth);
    placed.transformedWith = screenMatrix;
    placed.transformed = true;
    return Result::done;
}

}  // namespace qel
