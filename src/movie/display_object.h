// Display objects: the placed instances of characters, and the lists that hold them in drawing order.
#pragma once

#include <cstdint>
#include <iterator>

#include "format/geometry.h"
#include "movie/character.h"
#include "movie/sprite.h"
#include "render/edge_table.h"

namespace qel {

// The numbers of the device. Kinds without a structure here are never placed.
enum class ObjectKind : std::uint8_t { shape = 1, clip = 5 };

struct ClipInstance;

struct DisplayObject {
    ObjectKind kind = ObjectKind::shape;
    bool changed = true;                   // must be drawn again although its bounds did not move
    Rect bounds;                           // on the screen, both maxima inclusive; what lies outside the screen is kept
    Matrix matrix = identityMatrix;        // as placed, relative to the parent
    Matrix screenMatrix = identityMatrix;  // the matrix followed by those of all parents and of the stage
    std::uint16_t characterId = noCharacter;
    std::uint32_t placeKey = 0;  // identity of the placement: lets a key frame find a clip again

    ClipInstance* parent = nullptr;     // the clip whose list this is on; null on the root list
    DisplayObject* previous = nullptr;  // links in that list
    DisplayObject* next = nullptr;
    Pool* pool = nullptr;
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
    stepped,  // was stepped, or found again, while the frame was read: the walk passes over it once
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
};

// Clips nest no deeper: placements below create nothing.
inline constexpr unsigned maximumClipNesting = 64;

// The object at a position, or null.
DisplayObject* objectAt(const DisplayList& list, std::uint8_t position);

// Puts an object at a position, which moves the object there and those above it up by one; at the end when there are
// fewer.
void insertAt(DisplayList& list, DisplayObject* object, std::uint8_t position);
void append(DisplayList& list, DisplayObject* object);

// Takes an object off its list; the caller owns it.
void unlink(DisplayList& list, DisplayObject* object);

// Frees an object that is on no list, with everything below it.
void destroyObject(DisplayObject* object);

// Frees every object.
void clearList(DisplayList& list);

// The object behind `object` in drawing order, children before what lies above their clip; null at the end.
// `skipChildren` passes over those of `object`.
DisplayObject* nextInDrawingOrder(const DisplayObject* object, bool skipChildren = false);

// A clip, or null for another kind.
inline ClipInstance* asClip(DisplayObject* object) {
    return object && object->kind == ObjectKind::clip ? static_cast<ClipInstance*>(object) : nullptr;
}

}  // namespace qel
