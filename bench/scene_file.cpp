#include "scene_file.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace qel::bench {
namespace {

using Json = nlohmann::json;

// A number that does not fit its field would draw another scene than the one written down.
template <class Number>
Number numberOf(const Json& value) {
    const auto wide = value.get<std::int64_t>();
    const auto number = static_cast<Number>(wide);
    if (number != wide) throw std::runtime_error("the number " + std::to_string(wide) + " is too large");
    return number;
}

Matrix matrixOf(const Json& values, std::size_t from = 0) {
    const auto at = [&](std::size_t i) -> const Json& { return values.at(from + i); };
    return {.a = numberOf<std::int32_t>(at(0)),
            .b = numberOf<std::int32_t>(at(1)),
            .c = numberOf<std::int32_t>(at(2)),
            .d = numberOf<std::int32_t>(at(3)),
            .tx = numberOf<std::int16_t>(at(4)),
            .ty = numberOf<std::int16_t>(at(5))};
}

// Numbers written as hexadecimal digits, so many for each.
template <class Number>
std::vector<Number> hexNumbers(const std::string& text, std::size_t count) {
    constexpr std::size_t digits = sizeof(Number) * 2;
    if (text.size() != count * digits) throw std::runtime_error("a bitmap has not the pixels of its size");
    std::vector<Number> numbers;
    numbers.reserve(count);
    for (std::size_t at = 0; at < text.size(); at += digits)
        numbers.push_back(static_cast<Number>(std::stoul(text.substr(at, digits), nullptr, 16)));
    return numbers;
}

SceneBitmap bitmapOf(const Json& value) {
    SceneBitmap bitmap{.name = value.at("name").get<std::string>(),
                       .width = numberOf<std::uint16_t>(value.at("width")),
                       .height = numberOf<std::uint16_t>(value.at("height")),
                       .pixels = {},
                       .alpha = {}};
    const auto count = static_cast<std::size_t>(bitmap.width) * static_cast<std::size_t>(bitmap.height);
    bitmap.pixels = hexNumbers<std::uint16_t>(value.at("rgb565").get<std::string>(), count);
    if (value.contains("alpha")) bitmap.alpha = hexNumbers<std::uint8_t>(value.at("alpha").get<std::string>(), count);
    return bitmap;
}

std::size_t bitmapNamed(const std::vector<SceneBitmap>& bitmaps, const std::string& name) {
    for (std::size_t i = 0; i < bitmaps.size(); ++i)
        if (bitmaps[i].name == name) return i;
    throw std::runtime_error("there is no bitmap " + name);
}

SceneFill fillOf(const Json& value, const std::vector<SceneBitmap>& bitmaps) {
    SceneFill fill;
    const auto kind = value.at("kind").get<std::string>();
    if (kind != "solid") fill.matrix = matrixOf(value.at("matrix"));
    if (kind == "solid") {
        fill.colour = numberOf<std::uint16_t>(value.at("rgb565"));
        fill.alpha = numberOf<std::uint8_t>(value.at("alpha"));
    } else if (kind == "linear" || kind == "radial") {
        fill.kind = kind == "linear" ? SceneFill::Kind::linear : SceneFill::Kind::radial;
        for (const Json& stop : value.at("stops"))
            fill.stops.push_back({.ratio = numberOf<std::uint8_t>(stop.at("ratio")),
                                  .colour = numberOf<std::uint16_t>(stop.at("rgb565")),
                                  .alpha = numberOf<std::uint8_t>(stop.at("alpha"))});
    } else if (kind == "bitmap") {
        fill.kind = SceneFill::Kind::bitmap;
        fill.bitmap = bitmapNamed(bitmaps, value.at("bitmap").get<std::string>());
        fill.alpha = numberOf<std::uint8_t>(value.at("alpha"));
        fill.repeated = value.at("repeat").get<int>() != 0;
    } else {
        throw std::runtime_error("there is no fill " + kind);
    }
    return fill;
}

Point pointOf(const Json& step, std::size_t from) {
    return {numberOf<std::int16_t>(step.at(from)), numberOf<std::int16_t>(step.at(from + 1))};
}

PathStep stepOf(const Json& step) {
    const auto letter = step.at(0).get<std::string>();
    if (letter == "M") return {.kind = PathStep::Kind::move, .control = {}, .to = pointOf(step, 1)};
    if (letter == "L") return {.kind = PathStep::Kind::line, .control = {}, .to = pointOf(step, 1)};
    if (letter == "Q") return {.kind = PathStep::Kind::curve, .control = pointOf(step, 1), .to = pointOf(step, 3)};
    throw std::runtime_error("a path has no step " + letter);
}

SceneShape shapeOf(const Json& value, const std::vector<SceneBitmap>& bitmaps) {
    SceneShape shape;
    for (const Json& step : value.at("path")) shape.path.push_back(stepOf(step));
    if (value.contains("fill")) shape.fill = fillOf(value.at("fill"), bitmaps);
    if (value.contains("stroke")) {
        const Json& stroke = value.at("stroke");
        shape.stroke = SceneStroke{.width = numberOf<std::uint8_t>(stroke.at("width")),
                                   .colour = numberOf<std::uint16_t>(stroke.at("rgb565")),
                                   .alpha = numberOf<std::uint8_t>(stroke.at("alpha"))};
    }
    return shape;
}

Scene sceneOf(const Json& value, const std::vector<SceneBitmap>& bitmaps) {
    Scene scene{.name = value.at("name").get<std::string>(),
                .width = numberOf<std::uint16_t>(value.at("width")),
                .height = numberOf<std::uint16_t>(value.at("height")),
                .background = numberOf<std::uint16_t>(value.at("background")),
                .shapes = {},
                .frames = {}};
    for (const Json& shape : value.at("shapes")) scene.shapes.push_back(shapeOf(shape, bitmaps));
    for (const Json& placements : value.at("frames")) {
        SceneFrame& frame = scene.frames.emplace_back();
        for (const Json& placement : placements) {
            frame.push_back({.shape = numberOf<std::uint16_t>(placement.at(0)), .matrix = matrixOf(placement, 1)});
            if (frame.back().shape >= scene.shapes.size()) throw std::runtime_error("a frame places no shape");
        }
    }
    if (scene.frames.empty()) throw std::runtime_error("the scene " + scene.name + " has no frame");
    return scene;
}

}  // namespace

SceneFile readScenes(const std::string& path) try {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot be opened");
    const Json document = Json::parse(file);
    SceneFile scenes;
    for (const Json& bitmap : document.at("bitmaps")) scenes.bitmaps.push_back(bitmapOf(bitmap));
    for (const Json& scene : document.at("scenes")) scenes.scenes.push_back(sceneOf(scene, scenes.bitmaps));
    return scenes;
} catch (const std::exception& error) {
    throw std::runtime_error(path + ": " + error.what());
}

Scene halved(Scene scene) {
    for (SceneFrame& frame : scene.frames) {
        for (std::size_t i = 0; i < frame.size() / 2; ++i) frame[i] = frame[2 * i];
        frame.resize(frame.size() / 2);
    }
    return scene;
}

Scene doubled(Scene scene) {
    for (SceneFrame& frame : scene.frames) {
        const SceneFrame once = frame;
        frame.insert(frame.end(), once.begin(), once.end());
    }
    return scene;
}

}  // namespace qel::bench
