#include "movie/display_object.h"

#include "movie/dictionary.h"

namespace qel {
namespace {

template <class T>
void destroyAs(DisplayObject* object) {
    Pool* pool = object->pool;
    PoolPtr<T>(static_cast<T*>(object), PoolDelete{pool}).reset();
}

// Moves all objects of a list to the end of another.
void moveToEnd(DisplayList& from, DisplayList& to) {
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

// Frees one object whose children and look are gone.
void destroyEmpty(DisplayObject* object) {
    switch (object->kind) {
        case ObjectKind::shape:
            releaseCharacter(*static_cast<ShapeInstance*>(object)->shape);
            return destroyAs<ShapeInstance>(object);
        case ObjectKind::morph:
            releaseShapes(static_cast<MorphInstance*>(object)->morph);
            return destroyAs<MorphInstance>(object);
        case ObjectKind::button:
            leaveButtonList(*static_cast<ButtonInstance*>(object));
            return destroyAs<ButtonInstance>(object);
        case ObjectKind::clip: return destroyAs<ClipInstance>(object);
        case ObjectKind::text: return destroyAs<TextInstance>(object);
    }
}

DisplayObject* firstBelow(const DisplayObject* object) {
    if (const ClipInstance* clip = asClip(object)) return clip->children.first;
    return object->kind == ObjectKind::button ? static_cast<const ButtonInstance*>(object)->look : nullptr;
}

}  // namespace

// References to the clip know from now on that it is gone.
ClipInstance::~ClipInstance() {
    if (!anchor) return;
    anchor->clip = nullptr;
    if (anchor->holders == 0) freeBlock(*anchor->pool, anchor);
}

DisplayList::~DisplayList() { clearList(*this); }

DisplayObject* objectAt(const DisplayList& list, std::uint8_t position) {
    DisplayObject* object = list.first;
    for (unsigned i = 0; object && i < position; ++i) object = object->next;
    return object;
}

std::uint32_t objectCount(const DisplayList& list) {
    std::uint32_t count = 0;
    for (const DisplayObject* object = list.first; object; object = object->next) ++count;
    return count;
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

void releaseShapes(const Morph& morph) {
    for (const CharacterHold<Shape>* shape : {&morph.start, &morph.end})
        if (*shape) releaseCharacter(**shape);
}

void destroyObject(DisplayObject* object) {
    DisplayList alone;
    append(alone, object);
    clearList(alone);
}

// What is below an object is brought to its level first, so that deep nesting costs no stack.
void clearList(DisplayList& list) {
    while (DisplayObject* object = list.first) {
        unlink(list, object);
        if (ClipInstance* clip = asClip(object)) {
            moveToEnd(clip->children, list);
            moveToEnd(clip->kept, list);
        }
        if (ButtonInstance* button = asButton(object)) {
            if (DisplayObject* look = std::exchange(button->look, nullptr)) append(list, look);
        }
        destroyEmpty(object);
    }
}

void leaveButtonList(ButtonInstance& button) {
    ButtonList* list = std::exchange(button.joined, nullptr);
    if (!list) return;
    ButtonInstance* behind = button.nextButton ? button.nextButton : list->first;
    if (list->focused == &button) list->focused = behind == &button ? nullptr : behind;
    (button.previousButton ? button.previousButton->nextButton : list->first) = button.nextButton;
    (button.nextButton ? button.nextButton->previousButton : list->last) = button.previousButton;
    button.previousButton = button.nextButton = nullptr;
}

DisplayObject* nextInDrawingOrder(const DisplayObject* object, bool skipChildren) {
    if (!skipChildren) {
        if (DisplayObject* below = firstBelow(object)) return below;
    }
    while (object && !object->next) object = object->owner;
    return object ? object->next : nullptr;
}

}  // namespace qel
