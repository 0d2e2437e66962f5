// Pictures in SVG files, as outlines with plain paints: everything that this format can hold. What it cannot is
// counted.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "author/svg_path.h"

namespace qel::author {

struct SvgStop {
    double offset = 0;  // 0 to 1
    std::uint32_t colour = 0;
    double alpha = 1;
};

struct SvgGradient {
    bool radial = false;
    SvgTransform plane;  // leads from (0, 0) - (1, 0), or from the unit circle, to the picture
    std::vector<SvgStop> stops;
};

struct SvgPaint {
    std::uint32_t colour = 0;  // 0xRRGGBB
    double alpha = 1;
    std::optional<SvgGradient> gradient;  // in its place; `alpha` counts for it too
};

struct SvgStroke {
    std::uint32_t colour = 0;
    double alpha = 1, width = 1;
};

struct SvgElement {
    std::vector<SvgSubPath> paths;
    std::optional<SvgPaint> fill;
    std::optional<SvgStroke> stroke;
};

struct SvgPicture {
    double width = 0, height = 0;        // pixels
    std::vector<SvgElement> elements;    // in drawing order
    std::map<std::string, int> leftOut;  // what the format cannot express, and how often the picture has it
};

// How large the picture is to be: what it says itself, times `scale`; or as large as fits a box.
struct SvgSize {
    double scale = 1;
    std::optional<SvgPoint> fit;  // width and height
};

// Throws SvgError for text that is no picture, or one beyond all measure.
SvgPicture readSvg(std::string_view text, const SvgSize& size);

}  // namespace qel::author
