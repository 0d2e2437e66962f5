#include "render/line.h"

#include <algorithm>
#include <cstdlib>

#include "render/fixed.h"
#include "render/pixel_rows.h"

namespace qel {
namespace {

// The sides of the screen that a point lies beyond, in the order in which they are looked at.
enum Side : unsigned { below = 1, above = 2, right = 4, left = 8 };

unsigned sidesBeyond(const Rect& box, Point p) {
    unsigned sides = 0;
    if (p.y > box.yMax) sides |= below;
    if (p.y < box.yMin) sides |= above;
    if (p.x > box.xMax) sides |= right;
    if (p.x < box.xMin) sides |= left;
    return sides;
}

struct Line {
    Point start, end;
};

// Where the line comes to a row or a column, along the other axis.
std::int16_t alongAt(std::int32_t from, std::int32_t acrossBy, std::int32_t acrossLength, std::int32_t length) {
    const std::int64_t product = std::int64_t{acrossBy} * length;
    return wrap16(from + (fixedDivideWide(product, acrossLength) >> 16));
}

Point moveToEdge(const Rect& box, const Line& line, unsigned sides) {
    const std::int32_t x0 = line.start.x, y0 = line.start.y;
    const std::int32_t dx = line.end.x - x0, dy = line.end.y - y0;
    if ((sides & (below | above)) != 0) {
        const std::int16_t y = (sides & below) != 0 ? box.yMax : box.yMin;
        return {alongAt(x0, y - y0, dy, dx), y};
    }
    const std::int16_t x = (sides & right) != 0 ? box.xMax : box.xMin;
    return {x, alongAt(y0, x - x0, dx, dy)};
}

// Cuts the line to the screen. False: it lies beyond one side.
bool cutToScreen(const Rect& box, Line& line) {
    // Every side needs one cut at each end; a cut by rounded numbers may leave a point beyond a side once more.
    constexpr int mostCuts = 16;
    for (int cuts = 0; cuts < mostCuts; ++cuts) {
        const unsigned startSides = sidesBeyond(box, line.start), endSides = sidesBeyond(box, line.end);
        if ((startSides & endSides) != 0) return false;
        if ((startSides | endSides) == 0) return true;
        if (startSides != 0)
            line.start = moveToEdge(box, line, startSides);
        else
            line.end = moveToEdge(box, line, endSides);
    }
    return false;
}

// A rectangle of pixels, maxima exclusive.
struct Block {
    std::int32_t x0, y0, x1, y1;
};

void fillBlock(const Pen& pen, const Block& block) {
    const std::int32_t x0 = std::max<std::int32_t>(block.x0, pen.clip.xMin),
                       x1 = std::min<std::int32_t>(block.x1, pen.clip.xMax + 1);
    const std::int32_t y0 = std::max<std::int32_t>(block.y0, pen.clip.yMin),
                       y1 = std::min<std::int32_t>(block.y1, pen.clip.yMax + 1);
    if (x0 >= x1 || y0 >= y1) return;
    const auto width = static_cast<std::size_t>(x1 - x0);
    std::uint16_t* row = rowOf(pen.context, y0) + x0;
    if (pen.alpha != 255) {
        for (std::int32_t y = y0; y < y1; ++y, row += pen.context.rowLength)
            blendColour({row, width}, pen.colour, pen.alpha);
    } else if (width == 1) {
        for (std::int32_t y = y0; y < y1; ++y, row += pen.context.rowLength) *row = pen.colour;
    } else {
        for (std::int32_t y = y0; y < y1; ++y, row += pen.context.rowLength) storeColour({row, width}, pen.colour);
    }
}

// How many pixels the line takes across its direction: the more it slants, the more.
std::int32_t runLength(std::int32_t width, std::int32_t minor, std::int32_t major) {
    const std::int32_t slope = fixedDivide(2 * minor, 2 * major) >> 8;  // 256ths
    return (((slope * slope >> 1) + 0x10000) * width + 32768) >> 16;
}

// A walk along the line: pixel by pixel along its major axis, with steps along the minor axis in between.
struct Walk {
    std::int32_t major = 0, minor = 0;  // lengths along the axes
    std::int32_t error = 0;

    Walk(std::int32_t majorLength, std::int32_t minorLength)
        : major(majorLength), minor(minorLength), error(2 * minorLength - majorLength) {}

    bool stepsAside() {
        const bool aside = error >= 0;
        if (aside) error -= 2 * major;
        error += 2 * minor;
        return aside;
    }
};

void drawSteep(const Pen& pen, const Line& line, std::int32_t length) {
    const std::int32_t dx = line.end.x - line.start.x, dy = line.end.y - line.start.y;
    const std::int32_t down = dy < 0 ? -1 : 1, across = dx < 0 ? -1 : 1;
    std::int32_t x = line.start.x - (length >> 1), firstRow = line.start.y, y = line.start.y;
    Walk walk(std::abs(dy), std::abs(dx));
    // Rows in one column make one block.
    const auto flush = [&](std::int32_t lastRow) {
        fillBlock(pen, {x, std::min(firstRow, lastRow), x + length, std::max(firstRow, lastRow) + 1});
    };
    for (std::int32_t left = walk.major; left > 0; --left, y += down) {
        if (!walk.stepsAside()) continue;
        flush(y);
        x += across;
        firstRow = y + down;
    }
    flush(y);
}

void drawFlat(const Pen& pen, const Line& line, std::int32_t length) {
    const std::int32_t dx = line.end.x - line.start.x, dy = line.end.y - line.start.y;
    const std::int32_t across = dx < 0 ? -1 : 1, down = dy < 0 ? -1 : 1;
    std::int32_t y = line.start.y - (length >> 1), firstColumn = line.start.x, x = line.start.x;
    Walk walk(std::abs(dx), std::abs(dy));
    const auto flush = [&](std::int32_t lastColumn) {
        fillBlock(pen, {std::min(firstColumn, lastColumn), y, std::max(firstColumn, lastColumn) + 1, y + length});
    };
    for (std::int32_t left = walk.major; left > 0; --left, x += across) {
        if (!walk.stepsAside()) continue;
        flush(x);
        y += down;
        firstColumn = x + across;
    }
    flush(x);
}

// Rows that grow shorter, from the start against the line's way: they fill the corner that the runs of the line before
// leave open.
void drawSteepWedge(const Pen& pen, const Line& line, std::int32_t half) {
    const std::int32_t back = line.end.y < line.start.y ? 1 : -1;
    std::int32_t y = line.start.y;
    for (std::int32_t k = half; k > 0; --k, y += back)
        fillBlock(pen, {line.start.x - (k - 1), y, line.start.x + k, y + 1});
}

void drawFlatWedge(const Pen& pen, const Line& line, std::int32_t half) {
    const std::int32_t back = line.end.x < line.start.x ? 1 : -1;
    std::int32_t x = line.start.x;
    for (std::int32_t k = half; k > 0; --k, x += back)
        fillBlock(pen, {x, line.start.y - (k - 1), x + 1, line.start.y + k});
}

struct Joint {
    bool joined = false;
    LineDirection last = LineDirection::none;
};

LineDirection draw(const Pen& pen, Line line, const Joint& joint) {
    if (!cutToScreen(pen.screen, line)) return LineDirection::none;
    const std::int32_t across = std::abs(line.end.x - line.start.x), down = std::abs(line.end.y - line.start.y);
    const bool steep = across <= down;
    const bool thin = pen.width < 2 && !joint.joined;
    const std::int32_t length = thin    ? 1
                                : steep ? runLength(pen.width, across, down)
                                        : runLength(pen.width, down, across);
    const LineDirection direction = steep ? LineDirection::vertical : LineDirection::horizontal;
    if (steep)
        drawSteep(pen, line, length);
    else
        drawFlat(pen, line, length);
    if (joint.joined && joint.last != direction && !(line.start == line.end)) {
        if (steep)
            drawSteepWedge(pen, line, length >> 1);
        else
            drawFlatWedge(pen, line, length >> 1);
    }
    return direction;
}

}  // namespace

LineDirection drawLine(const Pen& pen, Point start, Point end) { return draw(pen, {start, end}, {}); }

LineDirection drawJoinedLine(const Pen& pen, Point start, Point end, LineDirection last) {
    return draw(pen, {start, end}, {.joined = true, .last = last});
}

}  // namespace qel
