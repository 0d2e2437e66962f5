#include "bench/scene_movie.h"

#include "author/frame_items.h"

namespace qel::bench {
namespace {

using author::Bytes;

// The writer takes 24 bits; this is the colour that becomes the same RGB565 again.
std::uint32_t wide(std::uint16_t colour) {
    return (colour & 0xF800u) << 8 | (colour & 0x07E0u) << 5 | (colour & 0x001Fu) << 3;
}

// Every shape has three identifiers of its own: a higher fill would hide a lower one only within one shape.
constexpr std::uint16_t fillId(std::size_t shape) { return static_cast<std::uint16_t>(3 * shape + 1); }
constexpr std::uint16_t lineId(std::size_t shape) { return static_cast<std::uint16_t>(3 * shape + 2); }
constexpr std::uint16_t shapeId(std::size_t shape) { return static_cast<std::uint16_t>(3 * shape + 3); }

Bytes fillRecord(std::uint16_t id, const SceneFill& fill) {
    if (fill.kind == "solid") return author::solidFill(id, {.colour = wide(fill.colour), .alpha = fill.alpha});
    std::vector<author::GradientStop> stops;
    for (const SceneStop& stop : fill.stops) stops.push_back({stop.ratio, wide(stop.colour), stop.alpha});
    const auto type = fill.kind == "radial" ? author::GradientType::radial : author::GradientType::linear;
    return author::gradientFill(id, type, fill.matrix, stops);
}

author::Outline outlineOf(const SceneShape& shape, std::size_t index) {
    author::Outline outline;
    outline.style({.line = shape.stroke ? lineId(index) : noCharacter,
                   .fill0 = shape.fill ? fillId(index) : noCharacter,
                   .fill1 = noCharacter});
    Point pen;
    for (const PathStep& step : shape.path) {
        const auto by = [](Point from, Point to) {
            return Point{static_cast<std::int16_t>(to.x - from.x), static_cast<std::int16_t>(to.y - from.y)};
        };
        if (step.letter == 'M') outline.moveTo(step.end);
        if (step.letter == 'L') outline.lineTo(step.end);
        if (step.letter == 'Q') outline.curveBy(by(pen, step.control), by(step.control, step.end));
        pen = step.end;
    }
    return outline;
}

void addShape(author::MovieFile& movie, const SceneShape& shape, std::size_t index) {
    if (shape.fill) movie.records.push_back(fillRecord(fillId(index), *shape.fill));
    if (shape.stroke)
        movie.records.push_back(author::lineStyle(
            lineId(index), {.colour = wide(shape.stroke->colour), .alpha = shape.stroke->alpha}, shape.stroke->width));
    const bool gradient = shape.fill && shape.fill->kind != "solid";
    movie.records.push_back(author::shape(
        {.id = shapeId(index),
         .bounds = {},
         .outline = outlineOf(shape, index),
         .hasFill = shape.fill.has_value(),
         .bitmapFills = {},
         .gradientFills = gradient ? std::vector<std::uint16_t>{fillId(index)} : std::vector<std::uint16_t>{}}));
}

}  // namespace

Bytes sceneMovie(const Scene& scene) {
    author::MovieFile movie;
    movie.width = scene.width;
    movie.height = scene.height;
    movie.properties.frameDuration(40).dictionarySize(static_cast<std::uint16_t>(3 * scene.shapes.size() + 4));
    movie.records.push_back(author::backgroundColour(wide(scene.background)));
    for (std::size_t i = 0; i < scene.shapes.size(); ++i) addShape(movie, scene.shapes[i], i);
    Bytes items;
    // Positions hold 8 bits, so the objects are placed from the top down, each below the last.
    for (std::size_t i = scene.placements.size(); i > 0; --i) {
        const ScenePlacement& placement = scene.placements[i - 1];
        for (const Bytes& item : {author::place(shapeId(placement.shape), 0), author::move(0, placement.matrix)})
            items.insert(items.end(), item.begin(), item.end());
    }
    movie.records.push_back(author::frame(items));
    movie.records.push_back(author::frame({}));
    return author::visFile(movie);
}

}  // namespace qel::bench
