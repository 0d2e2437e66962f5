// The drawing scenes of scenes.json: shapes, and where each frame places them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "format/geometry.h"

namespace qel::bench {

struct PathStep {
    char letter = 'M';  // M and L: to `end`; Q: a curve by way of `control`
    Point control, end;
};

struct SceneStop {
    std::uint8_t ratio = 0, alpha = 255;
    std::uint16_t colour = 0;  // RGB565
};

struct SceneFill {
    std::string kind;  // solid, linear, radial or bitmap
    std::uint16_t colour = 0;
    std::uint8_t alpha = 255;
    Matrix matrix;
    std::vector<SceneStop> stops;
};

struct SceneStroke {
    unsigned width = 1;
    std::uint16_t colour = 0;
    std::uint8_t alpha = 255;
};

struct SceneShape {
    std::vector<PathStep> path;
    std::optional<SceneFill> fill;
    std::optional<SceneStroke> stroke;
};

struct ScenePlacement {
    std::size_t shape = 0;
    Matrix matrix;
};

struct Scene {
    std::string name;
    std::uint16_t width = 0, height = 0, background = 0;
    std::vector<SceneShape> shapes;
    std::vector<ScenePlacement> placements;  // of the first frame, in drawing order
};

// All scenes of a file. Throws where the file is not of this form.
std::vector<Scene> readScenes(const std::string& path);

// The scene with `share` of its placements: 0.5 the first half, 2 all of them twice.
Scene withPlacements(Scene scene, double share);

}  // namespace qel::bench
