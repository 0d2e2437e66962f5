#include "movie/dictionary.h"

#include "movie/button.h"
#include "movie/compression_table.h"
#include "movie/edit_text.h"
#include "movie/first_use.h"
#include "movie/frame_cache.h"
#include "movie/sound_character.h"
#include "movie/sprite.h"
#include "render/morph_shape.h"
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

void store(DictionaryEntry& entry, CharacterPtr object) {
    entry.kind = object->kind;
    entry.object = object.release();
    entry.object->inDictionary = true;
}

bool isIdle(const Character* object) { return object && object->useCount == 0 && object->holders == 0; }

// Gives up the idle objects whose kind `wanted` names, in identifier order, until `bytes` have come back.
template <class Wanted>
bool purgeKinds(CharacterDictionary& dictionary, Wanted wanted, std::uint32_t bytes, std::uint32_t& freed) {
    for (std::uint32_t id = 0; id < dictionary.entries.size() && freed < bytes; ++id) {
        const Character* object = dictionary.entries[id].object;
        if (isIdle(object) && wanted(object->kind)) freed += freeCharacter(dictionary, static_cast<std::uint16_t>(id));
    }
    return freed >= bytes;
}

// Gives up what the content's own order lists, from its last entry to its first.
bool purgeInOrder(CharacterDictionary& dictionary, std::uint32_t bytes, std::uint32_t freed) {
    for (std::uint32_t i = dictionary.purgeOrder.size(); i > 0 && freed < bytes; --i) {
        const std::uint16_t id = dictionary.purgeOrder[i - 1];
        const DictionaryEntry* entry = findEntry(dictionary, id);
        if (entry && isIdle(entry->object)) freed += freeCharacter(dictionary, id);
    }
    return freed >= bytes;
}

constexpr bool isBitmap(CharacterKind kind) {
    return kind == CharacterKind::bitmap || kind == CharacterKind::alphaBitmap;
}

}  // namespace

void destroyCharacter(Character* character) {
    switch (character->kind) {
        case CharacterKind::shape: return destroyAs<Shape>(character);
        case CharacterKind::solidFill: return destroyAs<SolidFill>(character);
        case CharacterKind::gradientFill: return destroyAs<GradientFill>(character);
        case CharacterKind::bitmapFill: return destroyAs<BitmapFill>(character);
        case CharacterKind::morphShape: return destroyAs<MorphShape>(character);
        case CharacterKind::lineStyle: return destroyAs<LineStyle>(character);
        case CharacterKind::sprite: return destroyAs<Sprite>(character);
        case CharacterKind::sound: return destroyAs<Sound>(character);
        case CharacterKind::button: return destroyAs<Button>(character);
        case CharacterKind::commandButton: return destroyAs<CommandButton>(character);
        case CharacterKind::editText: return destroyAs<EditText>(character);
        case CharacterKind::frameCache: return destroyAs<FrameCache>(character);
        case CharacterKind::compressionTable: return destroyAs<CompressionTable>(character);
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
        CharacterPtr decoded;
        const Result result = decodeDefinition(dictionary, id, *entry, decoded);
        if (!decoded) return {{}, result};
        store(*entry, std::move(decoded));
    }
    if (countsUses(entry->object->kind)) ++entry->object->useCount;
    return {CharacterHold<Character>(entry->object), Result::done};
}

bool isDecoded(const CharacterDictionary& dictionary, std::uint16_t id) {
    return id < dictionary.entries.size() && dictionary.entries[id].object != nullptr;
}

bool awaitsDecoding(const CharacterDictionary& dictionary, std::uint16_t id, std::uint32_t offset) {
    if (id >= dictionary.entries.size()) return false;
    const DictionaryEntry& entry = dictionary.entries[id];
    return entry.length == 0 || (!entry.object && entry.offset == offset);
}

void setCharacter(CharacterDictionary& dictionary, std::uint16_t id, std::uint32_t offset, std::uint32_t length,
                  CharacterPtr object) {
    if (!awaitsDecoding(dictionary, id, offset)) return;
    registerCharacter(dictionary, id, object->kind, offset, length);
    store(dictionary.entries[id], std::move(object));
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
    for (const CharacterKind first : {CharacterKind::shape, CharacterKind::sound})
        if (purgeKinds(
                dictionary, [first](CharacterKind kind) { return kind == first; }, bytes, freed))
            return true;
    if (!dictionary.purgeOrder.empty()) return purgeInOrder(dictionary, bytes, freed);
    return purgeKinds(dictionary, isBitmap, bytes, freed);
}

}  // namespace qel
