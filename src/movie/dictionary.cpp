#include "movie/dictionary.h"

#include "movie/definitions.h"
#include "movie/sprite.h"
#include "render/shape.h"

namespace qel {

namespace {

template <class T>
void destroyAs(Character* character) {
    Pool* pool = character->pool;
    PoolPtr<T>(static_cast<T*>(character), PoolDelete{pool}).reset();
}

DictionaryEntry* findEntry(CharacterDictionary& dictionary, std::uint16_t id) {
    return id < dictionary.entries.size() ? &dictionary.entries[id] : nullptr;
}

// Takes a decoded object out of the table. Whoever holds it keeps it.
void giveUp(DictionaryEntry& entry) {
    Character* object = std::exchange(entry.object, nullptr);
    if (!object) return;
    object->inDictionary = false;
    destroyIfAbandoned(*object);
}

bool isIdle(const Character* object) { return object && object->useCount == 0 && object->holders == 0; }

// Gives up the idle objects of one kind, in identifier order, until `bytes` have come back.
bool purgeKind(CharacterDictionary& dictionary, CharacterKind kind, std::uint32_t bytes, std::uint32_t& freed) {
    for (std::uint32_t id = 0; id < dictionary.entries.size() && freed < bytes; ++id) {
        const Character* object = dictionary.entries[id].object;
        if (isIdle(object) && object->kind == kind) freed += freeCharacter(dictionary, static_cast<std::uint16_t>(id));
    }
    return freed >= bytes;
}

}  // namespace

void destroyCharacter(Character* character) {
    switch (character->kind) {
        case CharacterKind::shape: return destroyAs<Shape>(character);
        case CharacterKind::solidFill: return destroyAs<SolidFill>(character);
        case CharacterKind::lineStyle: return destroyAs<LineStyle>(character);
        case CharacterKind::sprite: return destroyAs<Sprite>(character);
        default: return;  // kinds that are never decoded
    }
}

CharacterDictionary::~CharacterDictionary() { freeCharacters(*this); }

Result sizeDictionary(CharacterDictionary& dictionary, std::uint16_t count) {
    if (!dictionary.entries.empty() || count == 0) return Result::done;
    return dictionary.entries.assignZeros(*dictionary.pool, count);
}

bool registerCharacter(CharacterDictionary& dictionary, std::uint16_t id, CharacterKind kind, std::uint32_t offset,
                       std::uint32_t length) {
    DictionaryEntry* entry = findEntry(dictionary, id);
    if (!entry || entry->length != 0) return false;
    entry->offset = offset;
    entry->length = length;
    entry->kind = kind;
    return true;
}

Lookup lookupCharacter(CharacterDictionary& dictionary, std::uint16_t id) {
    DictionaryEntry* entry = findEntry(dictionary, id);
    if (!entry || entry->length == 0) return {};
    if (!entry->object) {
        Character* decoded = nullptr;
        const Result result = decodeDefinition(dictionary, id, *entry, decoded);
        if (!decoded) return {nullptr, result};
        decoded->inDictionary = true;
        entry->object = decoded;
        entry->kind = decoded->kind;
    }
    if (countsUses(entry->object->kind)) ++entry->object->useCount;
    return {entry->object, Result::done};
}

void releaseCharacter(Character& character) {
    if (countsUses(character.kind)) --character.useCount;
}

std::uint32_t freeCharacter(CharacterDictionary& dictionary, std::uint16_t id) {
    DictionaryEntry* entry = findEntry(dictionary, id);
    if (!entry) return 0;
    const std::uint32_t before = dictionary.pool->inUse;
    giveUp(*entry);
    return before - dictionary.pool->inUse;
}

void freeCharacters(CharacterDictionary& dictionary) {
    for (DictionaryEntry& entry : dictionary.entries) giveUp(entry);
}

bool purgeCharacters(CharacterDictionary& dictionary, std::uint32_t bytes) {
    std::uint32_t freed = 0;
    for (const CharacterKind kind : {CharacterKind::shape, CharacterKind::sound, CharacterKind::bitmap})
        if (purgeKind(dictionary, kind, bytes, freed)) return true;
    return purgeKind(dictionary, CharacterKind::alphaBitmap, bytes, freed);
}

}  // namespace qel
