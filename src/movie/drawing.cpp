#include "movie/drawing.h"

#include <algorithm>

#include "movie/movie.h"
#include "movie/placement.h"
#include "player/engine_services.h"
#include "render/rasterizer.h"

namespace qel {
namespace {

void collectChanges(Movie& movie) {
    for (DisplayObject* object = movie.root.first; object; object = nextInDrawingOrder(object)) {
        if (!std::exchange(object->changed, false)) continue;
        movie.changedAreas.add(boundsOf(*object));
    }
}

bool showsSomething(const Movie& movie, const DisplayObject& object) {
    return object.kind == ObjectKind::shape && movie.changedAreas.intersects(object.bounds);
}

// Draws an object in each of the areas: they do not overlap, so nothing is drawn twice.
Result drawObject(Movie& movie, const DisplayObject& object) {
    const auto& instance = static_cast<const ShapeInstance&>(object);
    if (!instance.shape->geometry.hasFill) return Result::done;
    for (const Rect& area : movie.changedAreas.areas()) {
        const Rect clip = intersection(area, object.bounds);
        if (isEmpty(clip)) continue;
        const Result filled = fillShape(movie.render, instance.placed.table, clip);
        if (failed(filled)) return filled;
    }
    return Result::done;
}

}  // namespace

void beginDrawing(Movie& movie) {
    collectChanges(movie);
    if (movie.fullRedraw || movie.pacing.firstFrame) movie.changedAreas.addAll();
    movie.fullRedraw = false;
    for (const Rect& area : movie.changedAreas.areas()) clearArea(movie.render, area, movie.header.backgroundColour);
    movie.drawingAt = movie.root.first;
    movie.state.enter(Phase::pace, PaceStep::draw);
}

Result drawNextObject(Movie& movie) {
    answer(movie, LoadCode::again);
    DisplayObject* object = movie.drawingAt;
    while (object && !showsSomething(movie, *object)) object = nextInDrawingOrder(object);
    if (!object) {
        movie.drawingAt = nullptr;
        movie.state.enter(Phase::pace, PaceStep::present);
        return Result::done;
    }
    movie.drawingAt = nextInDrawingOrder(object);
    return drawObject(movie, *object);
}

Result presentDrawnFrame(Movie& movie) {
    constexpr std::uint64_t fullProgress = 255;
    const std::uint16_t frameCount = movie.header.frameCount;
    const std::uint64_t progress = frameCount == 0 ? 0 : movie.frameIndex * fullProgress / frameCount;
    presentFrame(*movie.player, static_cast<std::uint32_t>(std::min(progress, fullProgress)));

    movie.changedAreas.clear();
    const std::uint32_t now = tickCount(*movie.player);
    movie.pacing.frameStart = now;
    movie.pacing.presented = now;
    movie.pacing.firstFrame = false;
    movie.pacing.dropped = false;
    movie.state.phase = Phase::dispatch;
    answer(movie, LoadCode::again);
    return Result::done;
}

}  // namespace qel
