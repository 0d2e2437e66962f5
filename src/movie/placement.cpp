#include "movie/placement.h"

#include "movie/movie.h"
#include "render/matrix.h"

namespace qel {
namespace {

constexpr Rect nowhere{0, 0, -1, -1};

const Matrix& parentMatrix(const Movie& movie, const DisplayObject& object) {
    return object.parent ? object.parent->screenMatrix : movie.stageToScreen;
}

// What stood there has to be drawn again. An object that no frame has shown left nothing.
void markOldPlace(Movie& movie, const DisplayObject& object) {
    if (!object.changed) movie.changedAreas.add(boundsOf(object));
}

// The screen matrix of one object, and of a shape its outline.
Result transformOne(Movie& movie, DisplayObject& object) {
    object.screenMatrix = product(object.matrix, parentMatrix(movie, object));
    if (object.kind != ObjectKind::shape) return Result::done;
    auto& instance = static_cast<ShapeInstance&>(object);
    return placeShape(instance.shape->geometry, object.screenMatrix, movie.pool, instance.placed, object.bounds);
}

void preparePlacement(Movie& movie, DisplayObject& object, const Timeline& timeline, std::uint16_t id,
                      std::uint32_t placeKey) {
    object.characterId = id;
    object.placeKey = placeKey;
    object.parent = timeline.clip;
    object.pool = &movie.pool;
}

Result placeShapeInstance(Movie& movie, const Timeline& timeline, Shape& shape, std::uint16_t id, std::uint8_t depth,
                          std::uint32_t placeKey) {
    PoolPtr<ShapeInstance> made = makePooled<ShapeInstance>(movie.pool);
    if (!made) {
        releaseCharacter(shape);
        return Result::outOfMemory;
    }
    made->kind = ObjectKind::shape;
    made->shape = CharacterHold<Shape>(&shape);
    preparePlacement(movie, *made, timeline, id, placeKey);
    if (failed(transformOne(movie, *made))) {
        destroyObject(made.release());
        return Result::outOfMemory;
    }
    insertAt(timeline.list, made.release(), depth);
    return Result::done;
}

Result placeNewClip(Movie& movie, const Timeline& timeline, Sprite& sprite, std::uint16_t id, std::uint8_t depth,
                    std::uint32_t placeKey) {
    const unsigned nesting = timeline.clip ? timeline.clip->depth + 1u : 1u;
    if (nesting > maximumClipNesting) return Result::nothing;
    PoolPtr<ClipInstance> made = makePooled<ClipInstance>(movie.pool);
    if (!made) return Result::outOfMemory;
    made->kind = ObjectKind::clip;
    made->sprite = CharacterHold<Sprite>(&sprite);
    made->depth = static_cast<std::uint16_t>(nesting);
    preparePlacement(movie, *made, timeline, id, placeKey);
    made->screenMatrix = product(made->matrix, parentMatrix(movie, *made));
    insertAt(timeline.list, made.release(), depth);
    return Result::done;
}

DisplayObject* findKept(const DisplayList& kept, std::uint32_t placeKey) {
    DisplayObject* object = kept.first;
    while (object && object->placeKey != placeKey) object = object->next;
    return object;
}

}  // namespace

Timeline rootTimeline(Movie& movie) {
    return {.list = movie.root, .kept = movie.rootKept, .nextPlacement = movie.nextPlacement};
}

Timeline clipTimeline(ClipInstance& clip) {
    return {.list = clip.children, .kept = clip.kept, .nextPlacement = clip.nextPlacement, .clip = &clip};
}

Result placeCharacter(Movie& movie, const Timeline& timeline, std::uint16_t id, std::uint8_t depth,
                      std::uint32_t placeKey) {
    const Lookup found = lookupCharacter(movie.dictionary, id);
    if (failed(found.result)) return found.result == Result::badContent ? Result::badContent : Result::outOfMemory;
    if (!found.character) return Result::nothing;
    switch (found.character->kind) {
        case CharacterKind::shape:
            return placeShapeInstance(movie, timeline, static_cast<Shape&>(*found.character), id, depth, placeKey);
        case CharacterKind::sprite: break;
        default: return Result::nothing;
    }
    DisplayObject* kept = findKept(timeline.kept, placeKey);
    if (!kept) return placeNewClip(movie, timeline, static_cast<Sprite&>(*found.character), id, depth, placeKey);
    unlink(timeline.kept, kept);
    insertAt(timeline.list, kept, depth);
    kept->changed = true;
    asClip(kept)->stepping = ClipStepping::stepped;
    return Result::done;
}

void removeObject(Movie& movie, const Timeline& timeline, std::uint8_t depth) {
    DisplayObject* object = objectAt(timeline.list, depth);
    if (!object) return;
    markOldPlace(movie, *object);
    unlink(timeline.list, object);
    destroyObject(object);
}

Result setMatrix(Movie& movie, DisplayObject& object, const Matrix& matrix) {
    markOldPlace(movie, object);
    object.matrix = matrix;
    object.changed = true;
    return transformObject(movie, object);
}

Result transformObject(Movie& movie, DisplayObject& object) {
    const DisplayObject* behind = nextInDrawingOrder(&object, true);
    for (DisplayObject* each = &object; each != behind; each = nextInDrawingOrder(each)) {
        const Result transformed = transformOne(movie, *each);
        if (failed(transformed)) return transformed;
    }
    return Result::done;
}

void emptyIntoKept(Movie& movie, const Timeline& timeline) {
    while (DisplayObject* object = timeline.list.first) {
        markOldPlace(movie, *object);
        unlink(timeline.list, object);
        if (object->kind != ObjectKind::clip) {
            destroyObject(object);
            continue;
        }
        append(timeline.kept, object);
    }
}

Rect boundsOf(const DisplayObject& object) {
    Rect box = nowhere;
    const DisplayObject* behind = nextInDrawingOrder(&object, true);
    for (const DisplayObject* each = &object; each != behind; each = nextInDrawingOrder(each)) {
        if (each->kind == ObjectKind::clip || isEmpty(each->bounds)) continue;
        box = isEmpty(box) ? each->bounds : boxAround(box, each->bounds);
    }
    return box;
}

}  // namespace qel
