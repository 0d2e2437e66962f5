#include "bench/scene.h"

#include <fstream>
#include <nlohmann/json.hpp>

namespace qel::bench {
namespace {

using Json = nlohmann::json;

Matrix matrixOf(const Json& list, std::size_t from = 0) {
    return {.a = list.at(from),
            .b = list.at(from + 1),
            .c = list.at(from + 2),
            .d = list.at(from + 3),
            .tx = list.at(from + 4),
            .ty = list.at(from + 5)};
}

PathStep stepOf(const Json& list) {
    PathStep step;
    step.letter = list.at(0).get<std::string>().at(0);
    const std::size_t end = step.letter == 'Q' ? 3 : 1;
    if (step.letter == 'Q') step.control = {list.at(1), list.at(2)};
    step.end = {list.at(end), list.at(end + 1)};
    return step;
}

SceneFill fillOf(const Json& json) {
    SceneFill fill{.kind = json.at("kind"), .matrix = identityMatrix, .stops = {}};
    fill.colour = json.value("rgb565", std::uint16_t{0});
    fill.alpha = json.value("alpha", std::uint8_t{255});
    if (json.contains("matrix")) fill.matrix = matrixOf(json.at("matrix"));
    for (const Json& stop : json.value("stops", Json::array()))
        fill.stops.push_back({.ratio = stop.at("ratio"), .alpha = stop.at("alpha"), .colour = stop.at("rgb565")});
    return fill;
}

SceneShape shapeOf(const Json& json) {
    SceneShape shape;
    for (const Json& step : json.at("path")) shape.path.push_back(stepOf(step));
    if (json.contains("fill")) shape.fill = fillOf(json.at("fill"));
    if (json.contains("stroke")) {
        const Json& stroke = json.at("stroke");
        shape.stroke =
            SceneStroke{.width = stroke.at("width"), .colour = stroke.at("rgb565"), .alpha = stroke.at("alpha")};
    }
    return shape;
}

Scene sceneOf(const Json& json) {
    Scene scene{.name = json.at("name"),
                .width = json.at("width"),
                .height = json.at("height"),
                .background = json.at("background"),
                .shapes = {},
                .placements = {}};
    for (const Json& shape : json.at("shapes")) scene.shapes.push_back(shapeOf(shape));
    for (const Json& placement : json.at("frames").at(0))
        scene.placements.push_back({.shape = placement.at(0), .matrix = matrixOf(placement, 1)});
    return scene;
}

}  // namespace

std::vector<Scene> readScenes(const std::string& path) {
    const Json file = Json::parse(std::ifstream(path));
    std::vector<Scene> scenes;
    for (const Json& scene : file.at("scenes")) scenes.push_back(sceneOf(scene));
    return scenes;
}

Scene withPlacements(Scene scene, double share) {
    const std::vector<ScenePlacement> all = scene.placements;
    const auto wanted = static_cast<std::size_t>(static_cast<double>(all.size()) * share);
    scene.placements.resize(std::min(wanted, all.size()));
    for (std::size_t i = all.size(); i < wanted; ++i) scene.placements.push_back(all[i % all.size()]);
    return scene;
}

}  // namespace qel::bench
