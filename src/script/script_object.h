// Objects of scripts, functions, and what refers to clips.
#pragma once

#include "script/variables.h"

namespace qel {

struct ClipInstance;
struct ObjectTable;

enum class ObjectClass : std::uint8_t {
    plain = 0,
    array = 1,
    math = 2,
    string = 3,
    number = 4,
    key = 5,
    colour = 6,
    sound = 7,
    date = 8,
    prototype = 9,
};

struct ScriptObject {
    ObjectClass kind = ObjectClass::plain;
    TextHold className;
    VariableList properties;

    // Variables and properties that hold it, as the device counts them: where it gives up an object that it still
    // uses, this one lives on until the last value lets go.
    std::uint16_t uses = 0;
    std::uint32_t holders = 0;     // values that refer to it
    ObjectTable* table = nullptr;  // null: it lives inside something else, and is never freed
    std::uint16_t slot = 0;        // there; noSlot: given up
    ScriptObject* previous = nullptr;
    ScriptObject* next = nullptr;  // all objects of the table, given up or not

    static constexpr std::uint16_t noSlot = 65535;
};

template <>
inline constexpr std::uint32_t charge<struct ScriptObject> = 24;

// All objects that scripts have made. The device keeps them in a table that doubles, and frees what nobody gave back
// with the table.
struct ObjectTable {
    ScriptMemory* memory = nullptr;
    PoolArray<ScriptObject*> slots;
    std::uint32_t lowestFree = 0;
    ScriptObject* first = nullptr;
    ScriptObject* doomed = nullptr;  // those that are being destroyed, linked by `next`
    bool destroying = false;

    ObjectTable() = default;
    ObjectTable(const ObjectTable&) = delete;
    ~ObjectTable() { clear(); }
    // Frees every object; no value refers to any from outside.
    void clear();
};

template <>
inline constexpr std::uint32_t charge<struct ScriptObject*> = 4;

// Room for the first objects.
bool reserveObjects(ObjectTable& table);

// An empty object of the kind that the class name selects. Null when memory is exhausted.
ScriptObject* newObject(ObjectTable& table, std::string_view className);

// One use more, one fewer; without any the object is given up.
void addUse(const Value& value);
void dropUse(const Value& value);

// A property, or null.
const Value* propertyOf(const ScriptObject& object, const Name& name);
bool setPropertyValue(ScriptMemory& memory, ScriptObject& object, const Name& name, Value value);
bool setPropertyValue(ScriptMemory& memory, ScriptObject& object, std::string_view name, Value value);

// What references to a clip share. The clip lets go of it when it is freed.
struct ClipAnchor {
    ClipInstance* clip = nullptr;  // null: gone
    Pool* pool = nullptr;
    std::uint32_t holders = 0;
};

}  // namespace qel
