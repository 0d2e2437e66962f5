#include "movie/placement.h"

#include "movie/buttons.h"
#include "movie/instances.h"
#include "movie/movie.h"

namespace qel {
namespace {

DisplayObject* findKept(const DisplayList& kept, std::uint32_t placeKey) {
    DisplayObject* object = kept.first;
    while (object && object->placeKey != placeKey) object = object->next;
    return object;
}

// A clip that is found again comes back as it was.
Result takeBack(Movie& movie, const Timeline& timeline, DisplayObject& kept, std::uint8_t depth) {
    unlink(timeline.kept, &kept);
    insertAt(timeline.list, &kept, depth);
    kept.moved = true;
    asClip(&kept)->stepping = ClipStepping::found;
    return rejoinButtons(movie, kept);
}

// Keeps an object that is on no list until the actions of this cycle have run. No key reaches its buttons any more,
// and what held it may go before it does.
void retire(Movie& movie, DisplayObject* object) {
    const DisplayObject* behind = nextInDrawingOrder(object, true);
    for (DisplayObject* each = object; each != behind; each = nextInDrawingOrder(each))
        if (ButtonInstance* button = asButton(each)) leaveButtonList(*button);
    object->owner = nullptr;
    append(movie.waiting, object);
}

// Whether action code waits to run on a clip of this object or below it.
bool isAwaited(const DisplayObject& object) {
    const DisplayObject* behind = nextInDrawingOrder(&object, true);
    for (const DisplayObject* each = &object; each != behind; each = nextInDrawingOrder(each))
        if (const ClipInstance* clip = asClip(each); clip && clip->awaitingLists != 0) return true;
    return false;
}

}  // namespace

void letGo(Movie& movie, DisplayObject* object) {
    if (isAwaited(*object))
        retire(movie, object);
    else
        destroyObject(object);
}

Timeline rootTimeline(Movie& movie) {
    return {.list = movie.root, .kept = movie.rootKept, .nextPlacement = movie.nextPlacement};
}

Timeline clipTimeline(ClipInstance& clip, bool bounded) {
    return {.list = clip.children,
            .kept = clip.kept,
            .nextPlacement = clip.nextPlacement,
            .clip = &clip,
            .bounded = bounded};
}

Result placeCharacter(Movie& movie, const Timeline& timeline, const Placement& placement, DisplayObject*& placed) {
    CharacterHold<Character> character;
    const Result found = lookupForPlacement(movie, placement.id, character);
    if (failed(found)) return found;
    if (!character) return Result::nothing;
    if (character->kind == CharacterKind::sprite && placement.placeKey != DisplayObject::noPlaceKey) {
        placed = findKept(timeline.kept, placement.placeKey);
        if (placed) return takeBack(movie, timeline, *placed, placement.depth);
    }
    const Result made = makeInstance(movie, timeline.clip, *character, placement.id, placement.arguments, placed);
    if (made != Result::done) return made;
    placed->placeKey = placement.placeKey;
    insertAt(timeline.list, placed, placement.depth);
    ClipInstance* clip = asClip(placed);
    return clip ? queueClipEvent(movie, *clip, ClipEvent::load) : Result::done;
}

Result removeObject(Movie& movie, const Timeline& timeline, std::uint8_t depth) {
    DisplayObject* object = objectAt(timeline.list, depth);
    if (!object) return Result::nothing;
    hideObject(movie, *object);
    unlink(timeline.list, object);
    ClipInstance* clip = asClip(object);
    const Result queued = clip ? queueClipEvent(movie, *clip, ClipEvent::unload) : Result::done;
    letGo(movie, object);
    return queued;
}

void setMatrix(DisplayObject& object, const Matrix& matrix) {
    object.matrix = matrix;
    object.moved = true;
}

void setColours(DisplayObject& object, const ColourTransform& colours) {
    object.colours = colours;
    object.changed = true;
    const ButtonInstance* button = asButton(&object);
    if (button && button->look) setColours(*button->look, colours);
}

void setAlpha(DisplayObject& object, std::uint8_t alpha) {
    ColourTransform colours = object.colours;
    colours.alphaMultiplier = 1;
    colours.alphaOffset = alpha;
    setColours(object, colours);
}

void setRatio(DisplayObject& object, std::uint16_t ratio) {
    MorphInstance* instance = asMorph(&object);
    if (!instance || instance->morph.ratio == ratio) return;
    instance->morph.ratio = ratio;
    instance->morphed = instance->moved = instance->changed = true;
}

void hideObject(Movie& movie, DisplayObject& object) {
    const DisplayObject* behind = nextInDrawingOrder(&object, true);
    for (DisplayObject* each = &object; each != behind; each = nextInDrawingOrder(each))
        if (std::exchange(each->shown, false)) movie.changedAreas.add(each->bounds);
}

void emptyIntoKept(Movie& movie, const Timeline& timeline) {
    while (DisplayObject* object = timeline.list.first) {
        hideObject(movie, *object);
        unlink(timeline.list, object);
        if (ButtonInstance* button = asButton(object); button && asClip(button->look)) {
            DisplayObject* look = std::exchange(button->look, nullptr);
            look->owner = timeline.clip;
            append(timeline.kept, look);
        }
        if (asClip(object))
            append(timeline.kept, object);
        else
            letGo(movie, object);
    }
}

void dropKept(Movie& movie, const Timeline& timeline) {
    while (DisplayObject* object = timeline.kept.first) {
        unlink(timeline.kept, object);
        letGo(movie, object);
    }
}

}  // namespace qel
