#include "render/rasterizer.h"

#include <algorithm>

#include "render/curve.h"
#include "render/fill_span.h"
#include "render/fixed.h"

namespace qel {
namespace {

struct FillPass {
    RenderContext& context;
    ActiveEdges& active;  // the context's
    const EdgeTable& table;
    std::span<PlacedFill> fills;
    const Rect& clip;
    std::uint32_t nextEdge = 0;    // of the table's edges, the first that has not begun
    PlacedFill* inside = nullptr;  // the fills around the current position, the drawn one first
    std::int32_t previousX = -1;   // where the next span begins
    std::int32_t y = 0;            // the row that is being painted
};

std::int32_t roundedX(const ActiveEdge& edge) { return add32(edge.x, 32768) >> 16; }

// Where a line from `start` with the edge's slope crosses row y.
std::int32_t crossing(const ActiveEdge& edge, Point start, std::int32_t y) {
    return add32(start.x * 65536, multiply32(edge.slope, y - start.y));
}

// Takes the piece of a curve that reaches row y, beginning with the one from `pieceStart`. The last ends with the edge.
void takePiece(ActiveEdge& edge, Point pieceStart, std::int32_t y) {
    const FillEdge& curve = *edge.edge;
    while (edge.pieceEnd.y < y && edge.t <= curveEnd) {
        edge.t = static_cast<std::int16_t>(edge.t + edge.step);
        pieceStart = edge.pieceEnd;
        edge.pieceEnd = curvePoint(curve.start, curve.control, curve.end, edge.t);
    }
    edge.slope = edgeSlope(edge.pieceEnd.x - pieceStart.x, edge.pieceEnd.y - pieceStart.y);
    edge.x = crossing(edge, pieceStart, y);
}

ActiveEdge begin(const FillEdge& edge, std::int32_t y) {
    ActiveEdge active{.edge = &edge, .pieceEnd = edge.end};
    if (edge.straight) {
        active.slope = edgeSlope(edge.end.x - edge.start.x, edge.end.y - edge.start.y);
        active.x = crossing(active, edge.start, y);
        return active;
    }
    active.step = active.t = static_cast<std::int16_t>(curveStep(edge.start, edge.control, edge.end));
    active.pieceEnd = curvePoint(edge.start, edge.control, edge.end, active.t);
    takePiece(active, edge.start, y);
    return active;
}

Result activate(FillPass& pass, const FillEdge& edge) {
    if (failed(makeRoomForEdge(pass.context))) return Result::outOfMemory;
    pass.active.edges[pass.active.count++] = begin(edge, pass.y);
    return Result::done;
}

// The edges that begin above the first row and reach below it.
Result activateAbove(FillPass& pass) {
    const PoolArray<FillEdge>& edges = pass.table.edges;
    for (; pass.nextEdge < edges.size() && edges[pass.nextEdge].start.y < pass.y; ++pass.nextEdge) {
        const FillEdge& edge = edges[pass.nextEdge];
        if (edge.end.y > pass.y && failed(activate(pass, edge))) return Result::outOfMemory;
    }
    return Result::done;
}

Result activateRow(FillPass& pass) {
    const PoolArray<FillEdge>& edges = pass.table.edges;
    for (; pass.nextEdge < edges.size() && edges[pass.nextEdge].start.y == pass.y; ++pass.nextEdge)
        if (failed(activate(pass, edges[pass.nextEdge]))) return Result::outOfMemory;
    return Result::done;
}

bool outOfOrder(const ActiveEdge& left, const ActiveEdge& right) {
    if (left.x != right.x) return left.x > right.x;
    return left.slope != right.slope ? left.slope > right.slope : left.edge > right.edge;
}

// The edges are nearly in order from the row above, so moving each to its place is cheap. Where a shape has so many
// that it would not be, they are sorted from scratch.
void sortActive(ActiveEdges& active) {
    constexpr std::uint32_t many = 256;
    ActiveEdge* const edges = active.edges;
    if (active.count > many) {
        std::sort(edges, edges + active.count,
                  [](const ActiveEdge& a, const ActiveEdge& b) { return outOfOrder(b, a); });
        return;
    }
    for (std::uint32_t i = 1; i < active.count; ++i) {
        if (!outOfOrder(edges[i - 1], edges[i])) continue;
        const ActiveEdge edge = edges[i];
        std::uint32_t at = i;
        for (; at > 0 && outOfOrder(edges[at - 1], edge); --at) edges[at] = edges[at - 1];
        edges[at] = edge;
    }
}

void paint(const FillPass& pass, const PlacedFill& fill, std::int32_t begin, std::int32_t end) {
    const std::int32_t from = std::max<std::int32_t>(begin, pass.clip.xMin);
    const std::int32_t to = std::min<std::int32_t>(end, pass.clip.xMax + 1);
    if (from >= to) return;
    fillSpan(fill, {.pixels = {rowOf(pass.context, pass.y) + from, static_cast<std::size_t>(to - from)},
                    .x = from,
                    .y = pass.y,
                    .cutOff = from - std::max(begin, 0)});
}

// Paints from the end of the last span up to x with the fill that is drawn here.
void paintUpTo(FillPass& pass, std::int32_t x) {
    paint(pass, *pass.inside, pass.previousX, x);
    pass.previousX = x;
}

void leaveFill(FillPass& pass, PlacedFill& fill, std::int32_t x) {
    if (pass.inside == &fill) paintUpTo(pass, x);
    PlacedFill** link = &pass.inside;
    while (*link != &fill) link = &(*link)->next;
    *link = fill.next;
    fill.inside = false;
}

void enterFill(FillPass& pass, PlacedFill& fill, std::int32_t x) {
    if (pass.inside)
        paintUpTo(pass, x);
    else
        pass.previousX = x;
    PlacedFill** link = &pass.inside;
    while (*link && (*link)->style->order > fill.style->order) link = &(*link)->next;
    fill.next = *link;
    *link = &fill;
    fill.inside = true;
}

void toggle(FillPass& pass, std::uint16_t index, std::int32_t x) {
    if (index == StyleGroup::none) return;
    PlacedFill& fill = pass.fills[index];
    if (fill.inside)
        leaveFill(pass, fill, x);
    else
        enterFill(pass, fill, x);
}

// A fill that an open outline leaves on does not leak into the next row or the next shape.
void leaveAll(FillPass& pass) {
    for (PlacedFill* fill = pass.inside; fill; fill = fill->next) fill->inside = false;
    pass.inside = nullptr;
}

void paintRow(FillPass& pass) {
    pass.previousX = -1;
    for (const ActiveEdge& active : std::span(pass.active.edges, pass.active.count)) {
        const FillEdge& edge = *active.edge;
        const bool turned = edge.direction < 0;
        const std::int32_t x = roundedX(active);
        toggle(pass, turned ? edge.fill0 : edge.fill1, x);
        toggle(pass, turned ? edge.fill1 : edge.fill0, x);
    }
    leaveAll(pass);
}

// Brings the edges to the next row; those that end there are dropped.
void goToNextRow(FillPass& pass) {
    const std::int32_t y = ++pass.y;
    ActiveEdge* kept = pass.active.edges;
    for (ActiveEdge& edge : std::span(pass.active.edges, pass.active.count)) {
        if (edge.edge->end.y <= y) continue;
        if (edge.pieceEnd.y < y)
            takePiece(edge, edge.edge->start, y);
        else
            edge.x = add32(edge.x, edge.slope);
        *kept++ = edge;
    }
    pass.active.count = static_cast<std::uint32_t>(kept - pass.active.edges);
}

Result fillRows(FillPass& pass, std::int32_t lastRow) {
    while (pass.y <= lastRow) {
        if (failed(activateRow(pass))) return Result::outOfMemory;
        sortActive(pass.active);
        paintRow(pass);
        goToNextRow(pass);
    }
    return Result::done;
}

// --- shapes of one fill on one side of every edge: it is on between the crossings, two by two

// The first row on which the active edges are no longer the same, or no longer on the same pieces.
std::int32_t quietUntil(const FillPass& pass, std::int32_t lastRow) {
    std::int32_t until = lastRow + 1;
    const PoolArray<FillEdge>& edges = pass.table.edges;
    if (pass.nextEdge < edges.size()) until = std::min<std::int32_t>(until, edges[pass.nextEdge].start.y);
    for (const ActiveEdge& edge : std::span(pass.active.edges, pass.active.count))
        until = std::min({until, std::int32_t{edge.edge->end.y}, edge.pieceEnd.y + 1});
    return until;
}

// Paints spans of one fill.
template <class PaintRun>
struct OnePainter {
    const FillPass& pass;
    PaintRun paintRun;

    [[gnu::always_inline]] void paint(std::int32_t y, std::int32_t begin, std::int32_t end) const {
        const std::int32_t from = std::max<std::int32_t>(begin, pass.clip.xMin);
        const std::int32_t to = std::min<std::int32_t>(end, pass.clip.xMax + 1);
        if (from < to) paintRun(y, from, to, begin);
    }
};

template <class PaintRun>
OnePainter(const FillPass&, PaintRun) -> OnePainter<PaintRun>;

template <class Painter>
void paintBetweenTwo(FillPass& pass, const Painter& painter, std::int32_t until) {
    ActiveEdge &left = pass.active.edges[0], &right = pass.active.edges[1];
    for (;;) {
        const std::int32_t a = roundedX(left), b = roundedX(right);
        painter.paint(pass.y, std::min(a, b), std::max(a, b));
        if (pass.y + 1 >= until) return;
        ++pass.y;
        left.x = add32(left.x, left.slope);
        right.x = add32(right.x, right.slope);
    }
}

template <class Painter>
void paintBetweenMany(FillPass& pass, const Painter& painter, std::int32_t until) {
    const std::span<ActiveEdge> edges(pass.active.edges, pass.active.count);
    for (;;) {
        sortActive(pass.active);
        for (std::size_t i = 1; i < edges.size(); i += 2)
            painter.paint(pass.y, roundedX(edges[i - 1]), roundedX(edges[i]));
        if (pass.y + 1 >= until) return;
        ++pass.y;
        for (ActiveEdge& edge : edges) edge.x = add32(edge.x, edge.slope);
    }
}

template <class Painter>
Result fillRowsOfOne(FillPass& pass, const Painter& painter, std::int32_t lastRow) {
    while (pass.y <= lastRow) {
        if (failed(activateRow(pass))) return Result::outOfMemory;
        const std::int32_t until = quietUntil(pass, lastRow);
        if (pass.active.count == 2)
            paintBetweenTwo(pass, painter, until);
        else
            paintBetweenMany(pass, painter, until);
        goToNextRow(pass);
    }
    return Result::done;
}

Result fillWithOne(FillPass& pass, const PlacedFill& fill, std::int32_t lastRow) {
    const RenderContext& context = pass.context;
    const auto* solid = fill.style->fillKind == FillKind::solid ? static_cast<const SolidFill*>(fill.style) : nullptr;
    if (solid && solid->alpha == 255) {
        const OnePainter opaque{
            pass, [&context, colour = solid->colour](std::int32_t y, std::int32_t from, std::int32_t to, std::int32_t) {
                storeColour({rowOf(context, y) + from, static_cast<std::size_t>(to - from)}, colour);
            }};
        return fillRowsOfOne(pass, opaque, lastRow);
    }
    const OnePainter any{pass, [&](std::int32_t y, std::int32_t from, std::int32_t to, std::int32_t begin) {
                             fillSpan(fill, {.pixels = {rowOf(context, y) + from, static_cast<std::size_t>(to - from)},
                                             .x = from,
                                             .y = y,
                                             .cutOff = from - std::max(begin, 0)});
                         }};
    return fillRowsOfOne(pass, any, lastRow);
}

Result runPass(FillPass& pass, std::int32_t lastRow) {
    if (failed(activateAbove(pass))) return Result::outOfMemory;
    const std::uint16_t only = pass.table.onlyFill;
    return only == StyleGroup::none ? fillRows(pass, lastRow) : fillWithOne(pass, pass.fills[only], lastRow);
}

}  // namespace

Result fillShape(RenderContext& context, PlacedShape& placed, const Rect& clip) {
    const EdgeTable& table = placed.table;
    const std::int32_t firstRow = std::max(clip.yMin, table.top), lastRow = std::min(clip.yMax, table.bottom);
    if (firstRow > lastRow || table.edges.empty()) return Result::done;
    FillPass pass{.context = context,
                  .active = context.active,
                  .table = table,
                  .fills = placed.fills.span(),
                  .clip = clip,
                  .y = firstRow};
    context.active.count = 0;
    const Result result = runPass(pass, lastRow);
    leaveAll(pass);
    return result;
}

}  // namespace qel
