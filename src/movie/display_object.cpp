#include "movie/display_object.h"

#include "movie/dictionary.h"

namespace qel {
namespace {

void destroyShape(ShapeInstance* instance) {
    releaseCharacter(*instance->shape);
    PoolPtr<ShapeInstance>(instance, PoolDelete{instance->pool}).reset();
}

// Moves all objects of a list to the end of another.
void moveAll(DisplayList& from, DisplayList& to) {
    if (!from.first) return;
    from.first->previous = to.last;
    (to.last ? to.last->next : to.first) = from.first;
    to.last = from.last;
    from.first = from.last = nullptr;
}

// Puts an object below `above`, or on top when that is null.
void insertBelow(DisplayList& list, DisplayObject* object, DisplayObject* above) {
    object->next = above;
    object->previous = above ? above->previous : list.last;
    (object->previous ? object->previous->next : list.first) = object;
    (above ? above->previous : list.last) = object;
}

}  // namespace

DisplayList::~DisplayList() { clearList(*this); }

DisplayObject* objectAt(const DisplayList& list, std::uint8_t position) {
    DisplayObject* object = list.first;
    for (unsigned i = 0; object && i < position; ++i) object = object->next;
    return object;
}

void insertAt(DisplayList& list, DisplayObject* object, std::uint8_t position) {
    insertBelow(list, object, objectAt(list, position));
}

void append(DisplayList& list, DisplayObject* object) { insertBelow(list, object, nullptr); }

void unlink(DisplayList& list, DisplayObject* object) {
    (object->previous ? object->previous->next : list.first) = object->next;
    (object->next ? object->next->previous : list.last) = object->previous;
    object->previous = object->next = nullptr;
}

void destroyObject(DisplayObject* object) {
    if (object->kind == ObjectKind::shape) return destroyShape(static_cast<ShapeInstance*>(object));
    auto* clip = static_cast<ClipInstance*>(object);
    PoolPtr<ClipInstance>(clip, PoolDelete{clip->pool}).reset();
}

// Children are brought to one level first, so that deep nesting costs no stack.
void clearList(DisplayList& list) {
    while (DisplayObject* object = list.first) {
        unlink(list, object);
        if (ClipInstance* clip = asClip(object)) {
            moveAll(clip->children, list);
            moveAll(clip->kept, list);
        }
        destroyObject(object);
    }
}

DisplayObject* nextInDrawingOrder(const DisplayObject* object, bool skipChildren) {
    if (object->kind == ObjectKind::clip && !skipChildren) {
        if (DisplayObject* child = static_cast<const ClipInstance*>(object)->children.first) return child;
    }
    while (object && !object->next) object = object->parent;
    return object ? object->next : nullptr;
}

}  // namespace qel
