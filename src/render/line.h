// One straight line of whole pixels.
#pragma once

#include <cstdint>
#include <optional>

#include "format/geometry.h"
#include "render/render_context.h"

namespace qel {

// What a line is drawn with, and where.
struct Pen {
    RenderContext& context;
    Rect screen;  // lines are cut at its edges
    Rect clip;    // only these pixels are touched; both with inclusive maxima
    std::uint16_t colour = 0;
    std::uint8_t alpha = 255;
    std::uint8_t width = 0;
};

enum class LineDirection : std::uint8_t { none, horizontal, vertical };

// Draws a line from start to end, both included, and answers along which axis it runs mostly; none: it lies off the
// screen.
LineDirection drawLine(const Pen& pen, Point start, Point end);

// As drawLine, for a line that begins where the last one has ended: also closes the gap that lines of different
// directions leave there.
LineDirection drawJoinedLine(const Pen& pen, Point start, Point end, LineDirection last);

}  // namespace qel
