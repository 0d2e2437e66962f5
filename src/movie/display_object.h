// Display objects: the placed instances of characters, and the lists that hold them in drawing order.
#pragma once

#include <cstdint>
#include <iterator>

#include "format/geometry.h"
#include "movie/button.h"
#include "movie/character.h"
#include "movie/edit_text.h"
#include "movie/sprite.h"
#include "render/morph.h"
#include "render/placed_shape.h"
#include "script/script_object.h"

namespace qel {

// The numbers of the device. Kinds without a structure here are never placed.
enum class ObjectKind : std::uint8_t { shape = 1, morph = 2, button = 4, clip = 5, text = 6 };

struct DisplayObject {
    static constexpr std::uint32_t noPlaceKey = 0xFFFFFFFF;

    ObjectKind kind = ObjectKind::shape;
    bool moved = true;                     // its place on the screen, and those of all below it, are to be computed
    bool changed = true;                   // must be drawn again although its bounds did not move
    bool shown = false;                    // the screen shows it, within `bounds`
    Rect bounds;                           // on the screen, both maxima inclusive; what lies outside the screen is kept
    Matrix matrix = identityMatrix;        // as placed, relative to the parent
    Matrix screenMatrix = identityMatrix;  // the matrix followed by those of all parents, of the stage and of the view
    ColourTransform colours;               // as set
    std::uint16_t characterId = noCharacter;
    std::uint32_t placeKey = noPlaceKey;  // identity of the placement: lets a key frame find a clip again

    DisplayObject* owner = nullptr;     // the clip whose list this is on, or the button whose look; null on the root
    DisplayObject* previous = nullptr;  // links in that list
    DisplayObject* next = nullptr;
    Pool* pool = nullptr;

    // What a walk that brings everything up to date hands down from an owner to those below it.
    struct Inherited {
        bool moved = false, restyled = false, hidden = false;
    };
    Inherited handedDown;
};

// A timeline's objects from bottom to top. A depth in content is a position in this sequence, counted from 0: it is no
// key, and it shifts when objects below come and go. The list owns its objects.
struct DisplayList {
    DisplayObject* first = nullptr;
    DisplayObject* last = nullptr;

    DisplayList() = default;
    DisplayList(const DisplayList&) = delete;
    ~DisplayList();
};

struct ShapeInstance : DisplayObject {
    CharacterHold<Shape> shape;
    PlacedShape placed;
};

struct MorphInstance : DisplayObject {
    Morph morph;
    bool morphed = false;  // its ratio has changed since the shape between was made
    PlacedShape placed;
};

struct TextInstance : DisplayObject {
    CharacterHold<EditText> field;
    PoolText text;  // other than the field's own
    Name variable;  // that it shows
};

struct ButtonInstance;

// All buttons that can have the focus, in the order in which they were placed.
struct ButtonList {
    ButtonInstance* first = nullptr;
    ButtonInstance* last = nullptr;
    ButtonInstance* focused = nullptr;
};

// A button shows the character of its state: its look, an object of its own that no list holds.
struct ButtonInstance : DisplayObject {
    CharacterHold<ButtonCharacter> button;
    ButtonState state = ButtonState::up;
    std::uint16_t lookId = noCharacter;  // the character that `look` shows
    DisplayObject* look = nullptr;       // null: that character shows nothing
    ButtonList* joined = nullptr;        // the list of buttons that this one is in
    ButtonInstance* previousButton = nullptr;
    ButtonInstance* nextButton = nullptr;
};

// The number that a frame item gives to the placement that comes next on its timeline; none: the placement is known by
// where its item lies.
struct PlacementNumber {
    static constexpr std::uint16_t none = 65535;
    std::uint16_t value = none;
};

// How a clip relates to the frame that is being played.
enum class ClipStepping : std::uint8_t {
    due,      // the walk behind the frame steps it
    fresh,    // as due, and the frame being read has placed it: a move steps it at once
    late,     // as due, but a goto placed it in a frame on its way: a move no longer steps it
    stepped,  // a move has stepped it while the frame was read: the walk passes over it once
    found,    // a key frame has found it again: likewise
};

// A key frame of the sprite, as an instance finds it again.
struct ClipKeyFrame {
    std::uint16_t frame = 0;   // 0-based
    std::uint32_t offset = 0;  // of its record in the sprite's timeline
};

// Action code that runs on a clip's events.
struct ClipHandler {
    bool onLoad = false, onUnload = false, onFrame = false;
    PoolArray<std::uint8_t> code;
};

// All handlers of a clip, and which events any of them waits for.
struct ClipHandlers {
    bool onLoad = false, onUnload = false, onFrame = false;
    PoolArray<ClipHandler> list;
};

struct ClipInstance : DisplayObject {
    CharacterHold<Sprite> sprite;
    DisplayList children;
    DisplayList kept;               // clips that the frame being read may find again by their placement identity
    std::uint16_t frameIndex = 0;   // of the next frame record, 0-based
    std::uint32_t offset = 0;       // of that record in the sprite's timeline
    std::uint16_t depth = 1;        // nesting: 1 on the root list
    PlacementNumber nextPlacement;  // of its timeline
    ClipStepping stepping = ClipStepping::fresh;
    bool stopped = false;
    bool visible = true;
    bool matrixFromScript = false;      // a script has set the matrix: moves of a frame that finds it again are ignored
    bool skipFrameEvent = true;         // the next frame event is not for it
    bool placedOnTheWay = false;        // by a frame that a goto passed over: its first frame queues no actions either
    PoolArray<ClipKeyFrame> keyFrames;  // ascending
    PoolText name;
    ClipHandlers handlers;
    ColourTransform composedColours;  // with those of all clips above; while everything is up to date
    VariableList variables;
    ClipAnchor* anchor = nullptr;     // what references to it share; null: nobody has one
    std::uint32_t awaitingLists = 0;  // of action code that is to run on it

    ClipInstance() = default;
    ~ClipInstance();
};

// Clips nest no deeper: placements below create nothing.
inline constexpr unsigned maximumClipNesting = 64;

// The object at a position, or null.
DisplayObject* objectAt(const DisplayList& list, std::uint8_t position);
std::uint32_t objectCount(const DisplayList& list);

// Puts an object at a position, which moves the object there and those above it up by one; at the end when there are
// fewer.
void insertAt(DisplayList& list, DisplayObject* object, std::uint8_t position);
void append(DisplayList& list, DisplayObject* object);

// Takes an object off its list; the caller owns it.
void unlink(DisplayList& list, DisplayObject* object);

// Gives back the uses that a morph has of its two shapes.
void releaseShapes(const Morph& morph);

// Frees an object that is on no list, with everything below it. Buttons leave the list of buttons.
void destroyObject(DisplayObject* object);

// Frees every object.
void clearList(DisplayList& list);

// Takes a button out of the list of buttons. One that had the focus passes it on to the next, in whatever state that
// is.
void leaveButtonList(ButtonInstance& button);

// The object behind `object` in drawing order, children before what lies above their clip, looks behind their button;
// null at the end. `skipChildren` passes over those of `object`.
DisplayObject* nextInDrawingOrder(const DisplayObject* object, bool skipChildren = false);

// A clip or a button, or null for another kind.
inline ClipInstance* asClip(DisplayObject* object) {
    return object && object->kind == ObjectKind::clip ? static_cast<ClipInstance*>(object) : nullptr;
}
inline const ClipInstance* asClip(const DisplayObject* object) {
    return object && object->kind == ObjectKind::clip ? static_cast<const ClipInstance*>(object) : nullptr;
}
inline TextInstance* asText(DisplayObject* object) {
    return object && object->kind == ObjectKind::text ? static_cast<TextInstance*>(object) : nullptr;
}
inline MorphInstance* asMorph(DisplayObject* object) {
    return object && object->kind == ObjectKind::morph ? static_cast<MorphInstance*>(object) : nullptr;
}
inline ButtonInstance* asButton(DisplayObject* object) {
    return object && object->kind == ObjectKind::button ? static_cast<ButtonInstance*>(object) : nullptr;
}

// The clip that an object is in; null on the root timeline.
inline ClipInstance* clipAround(const DisplayObject& object) {
    DisplayObject* owner = object.owner;
    while (owner && owner->kind != ObjectKind::clip) owner = owner->owner;
    return asClip(owner);
}

}  // namespace qel
