#include "movie/drawing.h"

#include <algorithm>

#include "movie/movie.h"
#include "movie/refresh.h"
#include "player/engine_services.h"
#include "render/draw_shape.h"

namespace qel {
namespace {

bool needsDrawing(const Movie& movie, const DisplayObject& object) {
    const bool isDrawn = object.kind == ObjectKind::shape || object.kind == ObjectKind::morph;
    return isDrawn && object.shown && movie.changedAreas.intersects(object.bounds);
}

Result drawInto(Movie& movie, DisplayObject& object, const Rect& clip) {
    if (MorphInstance* morph = asMorph(&object))
        return drawShape(movie.render, ShapeKind::morph, morph->morph.geometry, morph->placed, clip);
    auto& instance = static_cast<ShapeInstance&>(object);
    return drawShape(movie.render, ShapeKind::plain, instance.shape->geometry, instance.placed, clip);
}

// Draws an object in each of the areas: they do not overlap, so nothing is drawn twice.
Result drawObject(Movie& movie, DisplayObject& object) {
    for (const Rect& area : movie.changedAreas.areas()) {
        const Rect clip = intersection(area, object.bounds);
        if (isEmpty(clip)) continue;
        const Result drawn = drawInto(movie, object, clip);
        if (failed(drawn)) return drawn;
    }
    return Result::done;
}

// Draws the next object that reaches into the changed areas. `nothing`: none is left.
Result drawNext(Movie& movie) {
    DisplayObject* object = movie.drawingAt;
    while (object && !needsDrawing(movie, *object)) object = nextInDrawingOrder(object);
    movie.drawingAt = object ? nextInDrawingOrder(object) : nullptr;
    return object ? drawObject(movie, *object) : Result::nothing;
}

// Finds what has changed and clears it.
Result prepareDrawing(Movie& movie) {
    const Result refreshed = refreshObjects(movie);
    if (failed(refreshed)) return refreshed;
    if (std::exchange(movie.fullRedraw, false) || movie.pacing.firstFrame) movie.changedAreas.addAll();
    for (const Rect& area : movie.changedAreas.areas()) clearArea(movie.render, area, movie.header.backgroundColour);
    movie.drawingAt = movie.root.first;
    return Result::done;
}

void present(Movie& movie) {
    constexpr std::uint64_t fullProgress = 255;
    const std::uint16_t frameCount = movie.header.frameCount;
    const std::uint64_t progress = frameCount == 0 ? 0 : movie.frameIndex * fullProgress / frameCount;
    presentFrame(*movie.player, static_cast<std::uint32_t>(std::min(progress, fullProgress)));
    movie.changedAreas.clear();
}

}  // namespace

Result beginDrawing(Movie& movie) {
    movie.state.enter(Phase::pace, PaceStep::draw);
    return prepareDrawing(movie);
}

Result drawNextObject(Movie& movie) {
    answer(movie, LoadCode::again);
    const Result drawn = drawNext(movie);
    if (drawn == Result::nothing) movie.state.enter(Phase::pace, PaceStep::present);
    return drawn;
}

Result presentDrawnFrame(Movie& movie) {
    present(movie);
    const std::uint32_t now = tickCount(*movie.player);
    movie.pacing.frameStart = now;
    movie.pacing.presented = now;
    movie.pacing.firstFrame = false;
    movie.state.phase = Phase::dispatch;
    answer(movie, LoadCode::again);
    return Result::done;
}

Result drawNow(Movie& movie) {
    if (movie.immediateFramesLeft == 0) return Result::done;
    --movie.immediateFramesLeft;
    Result drawn = prepareDrawing(movie);
    while (drawn == Result::done) drawn = drawNext(movie);
    if (failed(drawn)) return drawn;
    present(movie);
    return Result::done;
}

}  // namespace qel
