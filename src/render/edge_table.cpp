#include "render/edge_table.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "format/integers.h"
#include "render/fixed.h"

namespace qel {
namespace {

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

void emitCurve(EdgeTable& table, FillEdge edge, GrowingBox& box) {
    if (edge.start.y > edge.end.y) {
        std::swap(edge.start, edge.end);
        edge.direction = -1;
    }
    for (const Point point : {edge.start, edge.control, edge.end}) box.takeX(point.x);
    box.takeY(edge.start.y);
    box.takeY(edge.end.y);
    if (edge.control.y >= edge.start.y && edge.control.y <= edge.end.y) {
        if (edge.start.y != edge.end.y) table.edges.appendReserved(edge);
        return;
    }
    const std::int32_t t = turningParameter(edge.start, edge.control, edge.end);
    const Point firstControl = between(edge.start, edge.control, t);
    const Point secondControl = between(edge.control, edge.end, t);
    const Point turn = between(firstControl, secondControl, t);
    box.takeY(turn.y);
    FillEdge first = edge, second = edge;
    first.control = firstControl;
    first.end = turn;
    second.start = turn;
    second.control = secondControl;
    emit(table, first);
    emit(table, second);
}

// A segment that no fill touches is drawn only by its line.
void takeStroke(const ShapeGeometry& geometry, const PathSegment& segment, const StyleGroup& group, GrowingBox& box) {
    if (group.line == StyleGroup::none || geometry.lines[group.line].style->width == 0) return;
    box.take(segment.start);
    if (!segment.straight) box.take(segment.middle);
    box.take(segment.end);
}

void takeFilled(EdgeTable& table, const PathSegment& segment, const StyleGroup& group, GrowingBox& box) {
    const FillEdge edge{.start = segment.start,
                        .control = segment.middle,
                        .end = segment.end,
                        .fill0 = group.fill0,
                        .fill1 = group.fill1,
                        .straight = segment.straight};
    if (!segment.straight) return emitCurve(table, edge, box);
    box.take(segment.start);
    box.take(segment.end);
    emit(table, edge);
}

// Room for the edges of a transform; the array grows and never shrinks.
Result reserveEdges(EdgeTable& table, std::uint32_t count, Pool& pool) {
    table.edges.truncate(0);
    const std::uint32_t room = count + 1;  // the device ends the table with a sentinel
    if (!failed(table.edges.reserve(pool, room))) return Result::done;
    table.edges.clear();
    return Result::outOfMemory;
}

// By first rows. What else is compared only makes the order one and the same everywhere.
void sortEdges(std::span<FillEdge> edges) {
    const auto key = [](const FillEdge& edge) {
        return std::tuple(edge.start.y, edge.start.x, edge.end.y, edge.end.x, edge.fill0, edge.fill1);
    };
    const auto earlier = [](const FillEdge& a, const FillEdge& b) { return a.start.y < b.start.y; };
    if (std::is_sorted(edges.begin(), edges.end(), earlier)) return;
    std::sort(edges.begin(), edges.end(), [&](const FillEdge& a, const FillEdge& b) { return key(a) < key(b); });
}

// The fill that every edge has on exactly one of its sides.
std::uint16_t findOnlyFill(std::span<const FillEdge> edges) {
    constexpr std::uint16_t none = StyleGroup::none;
    std::uint16_t only = none;
    for (const FillEdge& edge : edges) {
        if ((edge.fill0 == none) == (edge.fill1 == none)) return none;
        const std::uint16_t fill = edge.fill0 != none ? edge.fill0 : edge.fill1;
        if (only != none && only != fill) return none;
        only = fill;
    }
    return only;
}

}  // namespace

Result buildEdges(const ShapeGeometry& geometry, std::span<const PathSegment> segments, Pool& pool, EdgeTable& table,
                  GrowingBox& box) {
    if (failed(reserveEdges(table, countEdges(segments), pool))) return Result::outOfMemory;
    std::uint32_t next = 0;
    for (const StyleGroup& group : geometry.groups) {
        const std::uint32_t end = std::min<std::uint32_t>(group.end, static_cast<std::uint32_t>(segments.size()));
        const bool filled = group.fill0 != StyleGroup::none || group.fill1 != StyleGroup::none;
        for (; next < end; ++next) {
            if (filled)
                takeFilled(table, segments[next], group, box);
            else
                takeStroke(geometry, segments[next], group, box);
        }
    }
    sortEdges(table.edges.span());
    table.onlyFill = findOnlyFill(table.edges.span());
    table.top = box.yMin;
    table.bottom = box.yMax;
    return Result::done;
}

}  // namespace qel
