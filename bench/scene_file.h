// The scenes that the drawing benchmarks have every renderer draw: bench/scenes.json, written by bench/gen_scenes.py.
// Coordinates are whole pixels, fills even-odd, colours RGB565 words. A fill's matrix maps the fill's space to the
// shape's: a linear gradient runs over x = -128 to 127, a radial one over a radius of 0 to 255, a bitmap in its pixels.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "format/geometry.h"

namespace qel::bench {

struct SceneBitmap {
    std::string name;
    int width = 0, height = 0;
    std::vector<std::uint16_t> pixels;  // rows from top to bottom, without gaps
    std::vector<std::uint8_t> alpha;    // likewise; empty: opaque
};

struct SceneStop {
    std::uint8_t ratio = 0;
    std::uint16_t colour = 0;
    std::uint8_t alpha = 255;
};

struct SceneFill {
    enum class Kind : std::uint8_t { solid, linear, radial, bitmap };
    Kind kind = Kind::solid;
    std::uint16_t colour = 0;      // of a solid fill
    std::uint8_t alpha = 255;      // of a solid fill or a bitmap
    Matrix matrix;                 // of all but solid fills
    std::vector<SceneStop> stops;  // of a gradient, ratios ascending
    std::size_t bitmap = 0;        // its place in SceneFile::bitmaps
    bool repeated = false;         // the bitmap is tiled; otherwise nothing is drawn beside it
};

struct SceneStroke {
    std::uint8_t width = 1;  // pixels
    std::uint16_t colour = 0;
    std::uint8_t alpha = 255;
};

struct PathStep {
    enum class Kind : std::uint8_t { move, line, curve };
    Kind kind = Kind::move;
    Point control;  // of a curve, which is quadratic
    Point to;
};

struct SceneShape {
    std::vector<PathStep> path;
    std::optional<SceneFill> fill;
    std::optional<SceneStroke> stroke;
};

struct ScenePlacement {
    std::size_t shape = 0;  // its place in Scene::shapes
    Matrix matrix;
};
using SceneFrame = std::vector<ScenePlacement>;  // in drawing order, on a picture of the background colour

struct Scene {
    std::string name;
    int width = 0, height = 0;  // pixels
    std::uint16_t background = 0;
    std::vector<SceneShape> shapes;
    std::vector<SceneFrame> frames;  // at least one
};

struct SceneFile {
    std::vector<SceneBitmap> bitmaps;
    std::vector<Scene> scenes;
};

// Throws std::runtime_error, which names the file, when it cannot be read or is no such file.
SceneFile readScenes(const std::string& path);

// The scene with other counts of objects: every second of those that each frame places, or everything placed twice,
// the second time above the first.
Scene halved(Scene scene);
Scene doubled(Scene scene);

// The nearest 24-bit colour, 0xRRGGBB, that becomes this word again when its low bits are cut off.
constexpr std::uint32_t colour24(std::uint16_t word) {
    const std::uint32_t red = word >> 11, green = (word >> 5) & 0x3Fu, blue = word & 0x1Fu;
    return (red << 3 | red >> 2) << 16 | (green << 2 | green >> 4) << 8 | (blue << 3 | blue >> 2);
}

}  // namespace qel::bench
