// Quadratic curves in whole pixels: how they are cut into straight pieces, and where they turn.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

#include "format/geometry.h"
#include "format/integers.h"

namespace qel {

inline constexpr std::int32_t curveEnd = 256;  // the parameter runs from 0 to here

// The parameter step that cuts the curve into pieces short enough to look round.
constexpr std::int32_t curveStep(Point start, Point control, Point end) {
    constexpr std::int32_t onePiece = curveEnd, largestStep = 128, finest = 20;
    constexpr auto steps = [] {  // by the control point's distance from the middle of the chord
        std::array<std::uint8_t, largestStep + 1> table{};
        struct Row {
            std::int32_t last;
            std::uint8_t step;
        };
        std::size_t e = 0;
        for (const Row row : {Row{3, 128}, Row{6, 86}, Row{16, 64}, Row{30, 52}, Row{50, 43}, Row{64, 37}, Row{80, 32},
                              Row{100, 29}, Row{128, 26}})
            while (e <= static_cast<std::size_t>(row.last)) table[e++] = row.step;
        return table;
    }();
    const auto farther = [](std::int32_t dx, std::int32_t dy) {
        return std::max(dx < 0 ? -dx : dx, dy < 0 ? -dy : dy);
    };
    const std::int32_t chord = farther(start.x - end.x, start.y - end.y);
    const std::int32_t middleX = (start.x + end.x) >> 1, middleY = (start.y + end.y) >> 1;
    const std::int32_t bend = farther(middleX - control.x, middleY - control.y);
    if (chord <= 2 && bend <= chord) return onePiece;
    if (bend > largestStep) return finest;
    return steps[static_cast<std::size_t>(bend)];
}

// The point at parameter t; past the end it is the end.
constexpr Point curvePoint(Point start, Point control, Point end, std::int32_t t) {
    if (t > curveEnd) return end;
    const std::int32_t rest = curveEnd - t;
    const auto along = [=](std::int32_t p0, std::int32_t pc, std::int32_t p1) {
        const std::int32_t sum =
            add32(add32(multiply32(rest * rest, p0), multiply32(2 * t * rest, pc)), multiply32(t * t, p1));
        return wrap16(add32(sum, 32768) >> 16);
    };
    return {along(start.x, control.x, end.x), along(start.y, control.y, end.y)};
}

}  // namespace qel
