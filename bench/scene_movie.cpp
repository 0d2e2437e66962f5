#include "scene_movie.h"

#include <algorithm>
#include <stdexcept>

#include "author/frame_items.h"
#include "author/movie_writer.h"

namespace qel::bench {
namespace {

using author::Bytes;

// Three identifiers for each shape: a fill, a line, and the shape itself.
constexpr std::uint16_t fillId(std::size_t shape) { return static_cast<std::uint16_t>(shape * 3 + 1); }
constexpr std::uint16_t lineId(std::size_t shape) { return static_cast<std::uint16_t>(shape * 3 + 2); }
constexpr std::uint16_t shapeId(std::size_t shape) { return static_cast<std::uint16_t>(shape * 3 + 3); }

void add(Bytes& to, const Bytes& bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }

Bytes fillRecord(std::uint16_t id, const SceneFill& fill) {
    std::vector<author::GradientStop> stops;
    for (const SceneStop& stop : fill.stops)
        stops.push_back({.ratio = stop.ratio, .colour = colour24(stop.colour), .alpha = stop.alpha});
    switch (fill.kind) {
        case SceneFill::Kind::solid:
            return author::solidFill(id, {.colour = colour24(fill.colour), .alpha = fill.alpha});
        case SceneFill::Kind::linear: return author::gradientFill(id, author::GradientType::linear, fill.matrix, stops);
        case SceneFill::Kind::radial: return author::gradientFill(id, author::GradientType::radial, fill.matrix, stops);
        case SceneFill::Kind::bitmap: break;
    }
    throw std::invalid_argument("the author library writes no bitmaps");
}

constexpr Point operator-(Point to, Point from) {
    return {static_cast<std::int16_t>(to.x - from.x), static_cast<std::int16_t>(to.y - from.y)};
}

void drawStep(author::Outline& outline, Point pen, const PathStep& step) {
    switch (step.kind) {
        case PathStep::Kind::move: outline.moveTo(step.to); break;
        case PathStep::Kind::line: outline.lineTo(step.to); break;
        case PathStep::Kind::curve: outline.curveBy(step.control - pen, step.to - step.control); break;
    }
}

void include(Rect& box, Point point) {
    box = {std::min(box.xMin, point.x), std::min(box.yMin, point.y), std::max(box.xMax, point.x),
           std::max(box.yMax, point.y)};
}

Bytes shapeRecord(std::size_t index, const SceneShape& shape) {
    author::ShapeRecord record{.id = shapeId(index),
                               .bounds = {},
                               .outline = {},
                               .hasFill = shape.fill.has_value(),
                               .bitmapFills = {},
                               .gradientFills = {}};
    author::Outline::Styles styles;
    if (shape.stroke) styles.line = lineId(index);
    if (shape.fill) styles.fill0 = fillId(index);
    record.outline.style(styles);
    Point pen{0, 0};
    if (!shape.path.empty()) {
        const Point first = shape.path.front().to;
        record.bounds = {first.x, first.y, first.x, first.y};
    }
    for (const PathStep& step : shape.path) {
        drawStep(record.outline, pen, step);
        if (step.kind == PathStep::Kind::curve) include(record.bounds, step.control);
        include(record.bounds, step.to);
        pen = step.to;
    }
    const bool isGradient =
        shape.fill && (shape.fill->kind == SceneFill::Kind::linear || shape.fill->kind == SceneFill::Kind::radial);
    if (isGradient) record.gradientFills.push_back(fillId(index));
    return author::shape(record);
}

void addCharacters(author::MovieFile& movie, const Scene& scene) {
    for (std::size_t i = 0; i < scene.shapes.size(); ++i) {
        const SceneShape& shape = scene.shapes[i];
        if (shape.fill) movie.records.push_back(fillRecord(fillId(i), *shape.fill));
        if (shape.stroke)
            movie.records.push_back(
                author::lineStyle(lineId(i), {.colour = colour24(shape.stroke->colour), .alpha = shape.stroke->alpha},
                                  shape.stroke->width));
        movie.records.push_back(shapeRecord(i, shape));
    }
}

// The topmost first, each at the bottom of the list: a depth is a byte, and there may be more objects.
Bytes placeItems(const SceneFrame& frame) {
    Bytes items;
    for (auto placement = frame.rbegin(); placement != frame.rend(); ++placement) {
        add(items, author::place(shapeId(placement->shape), 0));
        add(items, author::move(0, placement->matrix));
    }
    return items;
}

Bytes moveItems(const SceneFrame& frame, const SceneFrame& first) {
    constexpr std::size_t depths = 256;
    const auto sameShape = [](const ScenePlacement& a, const ScenePlacement& b) { return a.shape == b.shape; };
    if (!std::ranges::equal(frame, first, sameShape))
        throw std::invalid_argument("its frames do not place the same shapes");
    if (frame.size() > depths) throw std::invalid_argument("more objects move than there are depths");
    Bytes items;
    for (std::size_t depth = 0; depth < frame.size(); ++depth)
        add(items, author::move(static_cast<std::uint8_t>(depth), frame[depth].matrix));
    return items;
}

// A background colour in front of a frame has everything drawn anew.
void addFrame(author::MovieFile& movie, const Scene& scene, const Bytes& items) {
    movie.records.push_back(author::backgroundColour(colour24(scene.background)));
    movie.records.push_back(author::frame(items));
}

// All objects lie in one clip; where that moves, so do they. The clip's timeline is as long as the movie's, so that it
// never begins again.
void addClipFrames(author::MovieFile& movie, const Scene& scene) {
    const std::uint16_t clipId = shapeId(scene.shapes.size());
    Bytes timeline = author::frame(placeItems(scene.frames[0]));
    for (int i = 1; i < sceneMovieFrames; ++i) add(timeline, author::frame({}));
    movie.records.push_back(author::sprite({.id = clipId, .frameCount = sceneMovieFrames, .timeline = timeline}));
    const Bytes move = author::move(0, identityMatrix);
    addFrame(movie, scene, author::joined({author::place(clipId, 0), move}));
    for (int i = 1; i < sceneMovieFrames; ++i) addFrame(movie, scene, move);
}

void addRootFrames(author::MovieFile& movie, const Scene& scene) {
    addFrame(movie, scene, placeItems(scene.frames[0]));
    for (std::size_t i = 1; i < sceneMovieFrames; ++i) {
        const bool moves = scene.frames.size() > 1;
        addFrame(movie, scene, moves ? moveItems(scene.frames[i % scene.frames.size()], scene.frames[0]) : Bytes{});
    }
}

}  // namespace

author::Bytes sceneMovie(const Scene& scene, Motion motion) {
    constexpr std::size_t mostShapes = 20000;  // so that identifiers fit 16 bits
    if (scene.shapes.size() > mostShapes) throw std::invalid_argument("it has too many shapes");
    author::MovieFile movie;
    movie.width = static_cast<std::uint16_t>(scene.width);
    movie.height = static_cast<std::uint16_t>(scene.height);
    movie.properties.frameDuration(40).dictionarySize(static_cast<std::uint16_t>(shapeId(scene.shapes.size()) + 1));
    addCharacters(movie, scene);
    if (motion == Motion::moving && scene.frames.size() == 1)
        addClipFrames(movie, scene);
    else
        addRootFrames(movie, scene);
    return visFile(movie);
}

}  // namespace qel::bench
