#include "movie/refresh.h"

#include "movie/movie.h"
#include "movie/text_fields.h"
#include "render/colour_transform.h"
#include "render/matrix.h"
#include "render/style_copies.h"

namespace qel {
namespace {

Matrix screenMatrixOf(const Movie& movie, const DisplayObject& object) {
    if (object.owner) return product(object.matrix, object.owner->screenMatrix);
    return product(product(object.matrix, movie.stageToScreen), movie.view);
}

// The box around a rectangle of the object's own pixels, once it is transformed.
Rect transformedBox(const Matrix& matrix, const Rect& box) {
    const Point first = transformPoint(matrix, {box.xMin, box.yMin});
    Rect around{first.x, first.y, first.x, first.y};
    for (const Point corner : {Point{box.xMax, box.yMin}, Point{box.xMin, box.yMax}, Point{box.xMax, box.yMax}}) {
        const Point p = transformPoint(matrix, corner);
        around = boxAround(around, {p.x, p.y, p.x, p.y});
    }
    return around;
}

// What colours an object is drawn with: its own, then those of all clips around it.
ColourTransform coloursOf(const DisplayObject& object) {
    const ClipInstance* around = clipAround(object);
    return around ? compose(object.colours, around->composedColours) : object.colours;
}

void composeColours(ClipInstance& clip) {
    const ClipInstance* around = clipAround(clip);
    clip.composedColours = around ? compose(around->composedColours, clip.colours) : clip.colours;
}

Result placeMorph(Movie& movie, MorphInstance& instance) {
    if (std::exchange(instance.morphed, false)) {
        updateMorph(instance.morph);
        instance.placed.transformed = false;
    }
    return placeShape(instance.morph.geometry, instance.screenMatrix, PointRounding::cutOff, movie.pool,
                      instance.placed, instance.bounds);
}

Result bringToPlace(Movie& movie, DisplayObject& object) {
    switch (object.kind) {
        case ObjectKind::shape: {
            auto& instance = static_cast<ShapeInstance&>(object);
            return placeShape(instance.shape->geometry, object.screenMatrix, PointRounding::nearest, movie.pool,
                              instance.placed, object.bounds);
        }
        case ObjectKind::morph: return placeMorph(movie, static_cast<MorphInstance&>(object));
        case ObjectKind::text:
            object.bounds = transformedBox(object.screenMatrix, static_cast<const TextInstance&>(object).field->bounds);
            return Result::done;
        case ObjectKind::button:
        case ObjectKind::clip: break;  // what is below them has places
    }
    return Result::done;
}

Result recolour(Movie& movie, DisplayObject& object) {
    if (object.kind == ObjectKind::shape) {
        auto& instance = static_cast<ShapeInstance&>(object);
        return recolourShape(instance.shape->geometry, coloursOf(object), movie.pool, instance.placed);
    }
    if (MorphInstance* instance = asMorph(&object))
        return recolourShape(instance->morph.geometry, coloursOf(object), movie.pool, instance->placed);
    return Result::done;
}

constexpr bool isContainer(ObjectKind kind) { return kind == ObjectKind::clip || kind == ObjectKind::button; }

// What the screen shows of the object is noted where it was and where it is now.
Result refreshShown(Movie& movie, DisplayObject& object, const DisplayObject::Inherited& change) {
    const bool touched = change.moved || change.restyled || change.hidden == object.shown;
    if (touched && object.shown) movie.changedAreas.add(object.bounds);
    if (change.moved) {
        const Result placed = bringToPlace(movie, object);
        if (failed(placed)) return placed;
    }
    if (change.restyled) {
        const Result coloured = recolour(movie, object);
        if (failed(coloured)) return coloured;
    }
    object.shown = !change.hidden;
    if (touched && object.shown) movie.changedAreas.add(object.bounds);
    return Result::done;
}

Result refreshObject(Movie& movie, DisplayObject& object) {
    if (TextInstance* text = asText(&object)) {
        const Result followed = followVariable(movie, *text);
        if (failed(followed)) return followed;
    }
    const DisplayObject::Inherited above =
        object.owner ? object.owner->handedDown : DisplayObject::Inherited{.moved = movie.viewMoved};
    const ClipInstance* clip = asClip(&object);
    object.handedDown = {.moved = std::exchange(object.moved, false) || above.moved,
                         .restyled = std::exchange(object.changed, false) || above.restyled,
                         .hidden = above.hidden || (clip && !clip->visible)};
    if (object.handedDown.moved) object.screenMatrix = screenMatrixOf(movie, object);
    if (!isContainer(object.kind)) return refreshShown(movie, object, object.handedDown);
    if (clip && object.handedDown.restyled) composeColours(static_cast<ClipInstance&>(object));
    return Result::done;
}

}  // namespace

Result refreshObjects(Movie& movie) {
    for (DisplayObject* object = movie.root.first; object; object = nextInDrawingOrder(object)) {
        const Result refreshed = refreshObject(movie, *object);
        if (failed(refreshed)) return refreshed;
    }
    movie.viewMoved = false;
    return Result::done;
}

Rect boundsOf(const DisplayObject& object) {
    Rect box{0, 0, -1, -1};
    const DisplayObject* behind = nextInDrawingOrder(&object, true);
    for (const DisplayObject* each = &object; each != behind; each = nextInDrawingOrder(each)) {
        if (isContainer(each->kind) || isEmpty(each->bounds)) continue;
        box = isEmpty(box) ? each->bounds : boxAround(box, each->bounds);
    }
    return box;
}

}  // namespace qel
