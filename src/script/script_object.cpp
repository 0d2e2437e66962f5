#include "script/script_object.h"

#include <algorithm>

namespace qel {
namespace {

ObjectClass classOf(std::string_view name) {
    struct Row {
        std::string_view name;
        ObjectClass kind;
    };
    for (const Row& row :
         {Row{"Array", ObjectClass::array}, Row{"String", ObjectClass::string}, Row{"Number", ObjectClass::number},
          Row{"Color", ObjectClass::colour}, Row{"Sound", ObjectClass::sound}, Row{"Date", ObjectClass::date}})
        if (row.name == name) return row.kind;
    return ObjectClass::plain;
}

std::uint32_t classNameCharge(const ScriptObject& object) { return object.className->length + 1; }

void unlink(ScriptObject& object) {
    (object.previous ? object.previous->next : object.table->first) = object.next;
    if (object.next) object.next->previous = object.previous;
}

// What an object holds may be the last to hold others, in chains of any length: those wait until this one is gone.
void destroy(ScriptObject& first) {
    ObjectTable& table = *first.table;
    unlink(first);
    first.next = std::exchange(table.doomed, &first);
    if (table.destroying) return;
    table.destroying = true;
    ScriptMemory& memory = *table.memory;
    while (ScriptObject* object = table.doomed) {
        table.doomed = object->next;
        memory.giveBack(classNameCharge(*object));
        PoolPtr<ScriptObject>(object, PoolDelete{memory.charged}).reset();
    }
    table.destroying = false;
}

// The first free place of the table, which doubles when there is none.
bool takeSlot(ObjectTable& table, ScriptObject& object) {
    while (table.lowestFree < table.slots.size() && table.slots[table.lowestFree]) ++table.lowestFree;
    const std::uint32_t slot = table.lowestFree, count = table.slots.size();
    if (slot == count) {
        if (count == ScriptObject::noSlot) return false;
        if (count == table.slots.capacity() && failed(table.slots.reserve(*table.memory->charged, 2 * count)))
            return false;
        table.slots.appendReserved(nullptr);
    }
    table.slots[slot] = &object;
    object.slot = static_cast<std::uint16_t>(slot);
    return true;
}

}  // namespace

void holdObject(ScriptObject& object) { ++object.holders; }

void letGoOfObject(ScriptObject& object) {
    if (--object.holders != 0 || !object.table || object.slot != ScriptObject::noSlot) return;
    destroy(object);
}

void holdAnchor(ClipAnchor& anchor) { ++anchor.holders; }

void letGoOfAnchor(ClipAnchor& anchor) {
    if (--anchor.holders == 0 && !anchor.clip) freeBlock(*anchor.pool, &anchor);
}

bool reserveObjects(ObjectTable& table) {
    constexpr std::uint32_t firstCapacity = 50;
    return !failed(table.slots.reserve(*table.memory->charged, firstCapacity));
}

ScriptObject* newObject(ObjectTable& table, std::string_view className) {
    ScriptMemory& memory = *table.memory;
    TextHold name = makeText(memory, className);
    if (!name || !memory.take(name->length + 1)) return nullptr;
    PoolPtr<ScriptObject> object = makePooled<ScriptObject>(*memory.charged);
    if (!object || !takeSlot(table, *object)) {
        memory.giveBack(name->length + 1);
        memory.exhausted = true;
        return nullptr;
    }
    object->kind = classOf(className);
    object->className = std::move(name);
    object->table = &table;
    object->next = table.first;
    if (table.first) table.first->previous = object.get();
    table.first = object.get();
    return object.release();
}

void ObjectTable::clear() {
    // Objects may hold each other: first they let go of everything, and nobody frees one that others are still in.
    for (ScriptObject* object = first; object; object = object->next) ++object->holders;
    for (ScriptObject* object = first; object; object = object->next) object->properties.clear();
    while (first) destroy(*first);
    slots.truncate(0);
    lowestFree = 0;
}

void addUse(const Value& value) {
    if (value.is(ValueType::object) && value.asObject().table) ++value.asObject().uses;
}

void dropUse(const Value& value) {
    if (!value.is(ValueType::object) || !value.asObject().table) return;
    ScriptObject& object = value.asObject();
    if (--object.uses != 0 || object.slot == ScriptObject::noSlot) return;
    object.table->slots[object.slot] = nullptr;
    object.table->lowestFree = std::min<std::uint32_t>(object.table->lowestFree, object.slot);
    object.slot = ScriptObject::noSlot;
}

const Value* propertyOf(const ScriptObject& object, const Name& name) {
    const Variable* property = object.properties.find(name);
    return property ? &property->value : nullptr;
}

bool setPropertyValue(ScriptMemory& memory, ScriptObject& object, const Name& name, Value value) {
    Variable* property = object.properties.findOrAdd(memory, name);
    if (!property) return false;
    addUse(value);
    std::swap(property->value, value);  // the old one is released when the new one stands
    return true;
}

bool setPropertyValue(ScriptMemory& memory, ScriptObject& object, std::string_view name, Value value) {
    return setPropertyValue(memory, object, makeName(memory, name), std::move(value));
}

}  // namespace qel
