// Outlines in SVG path syntax, in whole pixels: M m L l H h V v Q q T t Z z.
#pragma once

#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "author/records.h"

namespace qel::author {

// What is wrong with a path.
struct PathError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct PathStep {
    Point to;
    std::optional<Point> control;  // of a curve
};

struct SubPath {
    Point start;
    std::vector<PathStep> steps;
    bool closed = false;  // by Z: its last step is a line back to the start, unless it was there
    Point end() const { return steps.empty() ? start : steps.back().to; }
};

// Throws PathError.
std::vector<SubPath> parsePath(std::string_view text);

// Draws the sub-paths with a line and a fill (noCharacter: none). A fill whose outline is open is closed by a segment
// without a line. `box` grows around everything.
void drawPath(Outline& outline, const std::vector<SubPath>& subPaths, std::uint16_t line, std::uint16_t fill,
              Rect& box);

// How many segments drawPath makes of the sub-paths.
std::size_t countSegments(const std::vector<SubPath>& subPaths, std::uint16_t fill);

}  // namespace qel::author
