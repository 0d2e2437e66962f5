#include "render/rasterizer.h"

#include <algorithm>

#include "render/curve.h"
#include "render/fill_span.h"
#include "render/fixed.h"

namespace qel {
namespace {

struct FillPass {
    RenderContext& context;
    const EdgeTable& table;
    const Rect& clip;
    std::uint32_t nextEdge = 0;    // of the sorted edges, the first that has not begun
    ActiveEdge* active = nullptr;  // from left to right
    FillStyle* inside = nullptr;   // the fills around the current position, the drawn one first
    std::int32_t previousX = -1;   // where the next span begins
};

void setX(ActiveEdge& edge, std::int32_t x) {
    edge.x = x;
    edge.roundedX = add32(x, 32768) >> 16;
}

// Where a line from `start` with the edge's slope crosses row y.
std::int32_t crossing(const ActiveEdge& edge, Point start, std::int32_t y) {
    return add32(start.x * 65536, multiply32(edge.slope, y - start.y));
}

// Goes on to the next piece of a curve until one reaches row y. The last piece ends with the edge.
void stepToRow(ActiveEdge& edge, std::int32_t y) {
    const FillEdge& curve = *edge.edge;
    while (edge.pieceEnd.y < y && edge.t <= curveEnd) {
        edge.t += edge.step;
        edge.pieceStart = edge.pieceEnd;
        edge.pieceEnd = curvePoint(curve.start, curve.control, curve.end, edge.t);
    }
    edge.slope = edgeSlope(edge.pieceEnd.x - edge.pieceStart.x, edge.pieceEnd.y - edge.pieceStart.y);
    setX(edge, crossing(edge, edge.pieceStart, y));
}

void beginCurve(ActiveEdge& edge, std::int32_t y) {
    const FillEdge& curve = *edge.edge;
    edge.step = edge.t = curveStep(curve.start, curve.control, curve.end);
    edge.pieceStart = curve.start;
    edge.pieceEnd = curvePoint(curve.start, curve.control, curve.end, edge.t);
    stepToRow(edge, y);
}

void beginLine(ActiveEdge& edge, std::int32_t y) {
    const FillEdge& line = *edge.edge;
    edge.slope = edgeSlope(line.end.x - line.start.x, line.end.y - line.start.y);
    setX(edge, crossing(edge, line.start, y));
}

void insertBefore(FillPass& pass, ActiveEdge* edge, ActiveEdge* previous, ActiveEdge* next) {
    edge->previous = previous;
    edge->next = next;
    (previous ? previous->next : pass.active) = edge;
    if (next) next->previous = edge;
}

void unlink(FillPass& pass, ActiveEdge* edge) {
    (edge->previous ? edge->previous->next : pass.active) = edge->next;
    if (edge->next) edge->next->previous = edge->previous;
}

Result activate(FillPass& pass, const FillEdge& edge, std::int32_t y) {
    ActiveEdge* added = takeActiveEdge(pass.context);
    if (!added) return Result::outOfMemory;
    added->edge = &edge;
    if (edge.straight)
        beginLine(*added, y);
    else
        beginCurve(*added, y);
    ActiveEdge* before = nullptr;
    ActiveEdge* behind = pass.active;
    while (behind && behind->roundedX < added->roundedX) {
        before = behind;
        behind = behind->next;
    }
    insertBefore(pass, added, before, behind);
    return Result::done;
}

bool outOfOrder(const ActiveEdge& left, const ActiveEdge& right) {
    return left.x > right.x || (left.x == right.x && left.slope > right.slope);
}

// The list is nearly in order from the row above, so moving each edge to its place is cheap.
void sortActive(FillPass& pass) {
    ActiveEdge* edge = pass.active;
    while (edge) {
        ActiveEdge* following = edge->next;
        ActiveEdge* before = edge->previous;
        if (before && outOfOrder(*before, *edge)) {
            unlink(pass, edge);
            while (before && outOfOrder(*before, *edge)) before = before->previous;
            insertBefore(pass, edge, before, before ? before->next : pass.active);
        }
        edge = following;
    }
}

// Paints from the end of the last span up to x with the fill that is drawn here.
Result paintUpTo(FillPass& pass, std::int32_t x, std::uint16_t* row) {
    const std::int32_t from = std::max<std::int32_t>(pass.previousX, pass.clip.xMin);
    const std::int32_t to = std::min<std::int32_t>(x, pass.clip.xMax + 1);
    pass.previousX = x;
    if (from >= to) return Result::done;
    return fillSpan(*pass.inside, {row + from, static_cast<std::size_t>(to - from)});
}

Result leaveFill(FillPass& pass, FillStyle& fill, std::int32_t x, std::uint16_t* row) {
    Result painted = Result::done;
    if (&fill == pass.inside) painted = paintUpTo(pass, x, row);
    FillStyle** link = &pass.inside;
    while (*link != &fill) link = &(*link)->next;
    *link = fill.next;
    fill.inside = false;
    return painted;
}

Result enterFill(FillPass& pass, FillStyle& fill, std::int32_t x, std::uint16_t* row) {
    Result painted = Result::done;
    if (pass.inside)
        painted = paintUpTo(pass, x, row);
    else
        pass.previousX = x;
    FillStyle** link = &pass.inside;
    while (*link && (*link)->order > fill.order) link = &(*link)->next;
    fill.next = *link;
    *link = &fill;
    fill.inside = true;
    return painted;
}

Result toggle(FillPass& pass, FillStyle* fill, std::int32_t x, std::uint16_t* row) {
    if (!fill) return Result::done;
    return fill->inside ? leaveFill(pass, *fill, x, row) : enterFill(pass, *fill, x, row);
}

// A fill that an open outline leaves on does not leak into the next row or the next shape.
void leaveAll(FillPass& pass) {
    for (FillStyle* fill = pass.inside; fill; fill = fill->next) fill->inside = false;
    pass.inside = nullptr;
}

Result paintRow(FillPass& pass, std::uint16_t* row) {
    pass.previousX = -1;
    Result painted = Result::done;
    for (const ActiveEdge* active = pass.active; active && !failed(painted); active = active->next) {
        FillStyle* first = active->edge->fill0;
        FillStyle* second = active->edge->fill1;
        if (active->edge->direction > 0) std::swap(first, second);
        painted = toggle(pass, first, active->roundedX, row);
        if (!failed(painted)) painted = toggle(pass, second, active->roundedX, row);
    }
    leaveAll(pass);
    return painted;
}

void goToRow(FillPass& pass, std::int32_t y) {
    for (ActiveEdge* active = pass.active; active;) {
        ActiveEdge* following = active->next;
        if (active->edge->end.y <= y) {
            unlink(pass, active);
            giveBackActiveEdge(pass.context, active);
        } else if (!active->edge->straight && active->pieceEnd.y < y) {
            stepToRow(*active, y);
        } else {
            setX(*active, add32(active->x, active->slope));
        }
        active = following;
    }
}

// Edges that begin above the first row and reach below it.
Result activateAbove(FillPass& pass, std::int32_t firstRow) {
    const PoolArray<FillEdge*>& sorted = pass.table.sorted;
    for (; pass.nextEdge < sorted.size() && sorted[pass.nextEdge]->start.y < firstRow; ++pass.nextEdge) {
        const FillEdge& edge = *sorted[pass.nextEdge];
        if (edge.end.y > firstRow && failed(activate(pass, edge, firstRow))) return Result::outOfMemory;
    }
    return Result::done;
}

Result stepRow(FillPass& pass, std::int32_t y) {
    const PoolArray<FillEdge*>& sorted = pass.table.sorted;
    for (; pass.nextEdge < sorted.size() && sorted[pass.nextEdge]->start.y == y; ++pass.nextEdge)
        if (failed(activate(pass, *sorted[pass.nextEdge], y))) return Result::outOfMemory;
    sortActive(pass);
    const Result painted = paintRow(pass, pass.context.pixels + std::ptrdiff_t{y} * pass.context.rowLength);
    goToRow(pass, y + 1);
    return painted;
}

}  // namespace

Result fillShape(RenderContext& context, const EdgeTable& table, const Rect& clip) {
    const std::int32_t firstRow = std::max(clip.yMin, table.top), lastRow = std::min(clip.yMax, table.bottom);
    if (firstRow > lastRow || table.edges.empty()) return Result::done;
    FillPass pass{.context = context, .table = table, .clip = clip};
    Result result = activateAbove(pass, firstRow);
    for (std::int32_t y = firstRow; y <= lastRow && !failed(result); ++y) result = stepRow(pass, y);
    while (ActiveEdge* edge = pass.active) {
        unlink(pass, edge);
        giveBackActiveEdge(context, edge);
    }
    return result;
}

}  // namespace qel
