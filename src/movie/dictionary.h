// The character dictionary: where every definition lies in the content, by identifier, and the characters decoded from
// it. A character is decoded when it is first looked up, from a fixed buffer that its record streams through, and given
// up again when memory runs short.
#pragma once

#include <array>
#include <cstdint>

#include "movie/character.h"
#include "player/player_instance.h"

namespace qel {

struct DictionaryEntry {
    std::uint32_t offset = 0;  // of the defining record, its header included
    std::uint32_t length = 0;  // of that record, header included; 0: nothing is registered
    CharacterKind kind = CharacterKind::none;
    Character* object = nullptr;  // null until decoded
};

struct CharacterDictionary {
    static constexpr std::size_t bufferSize = 2078;

    PlayerInstance* player = nullptr;
    Pool* pool = nullptr;
    PoolArray<DictionaryEntry> entries;
    PoolArray<std::uint16_t> purgeOrder;  // what may go first when memory runs short: the last entry first
    std::array<std::uint8_t, bufferSize> readBuffer;
    unsigned decoding = 0;  // definitions whose decoding has begun: a shape decodes its styles

    CharacterDictionary(PlayerInstance* itsPlayer, Pool* itsPool) : player(itsPlayer), pool(itsPool) {}
    CharacterDictionary(const CharacterDictionary&) = delete;
    ~CharacterDictionary();
};

// Makes the table, once: a table that is there stays.
Result sizeDictionary(CharacterDictionary& dictionary, std::uint16_t count);

// Registers a definition without decoding it; true when it is the one that counts. Of definitions with one identifier
// the first does; identifiers outside the table are passed over.
bool registerCharacter(CharacterDictionary& dictionary, std::uint16_t id, CharacterKind kind, std::uint32_t offset,
                       std::uint32_t length);

// A looked-up character: none when the identifier names nothing that can be had. `result` tells why. It is held,
// because the next allocation may purge what nobody holds.
struct Lookup {
    CharacterHold<Character> character;
    Result result = Result::nothing;  // done; nothing: no such definition; or the failure that decoding met
};

// Decodes on first use. Shapes, bitmaps and sounds count one more use each time.
Lookup lookupCharacter(CharacterDictionary& dictionary, std::uint16_t id);

bool isDecoded(const CharacterDictionary& dictionary, std::uint16_t id);

// Whether the definition of `id` at `offset` of the content is the one that counts, and is not decoded.
bool awaitsDecoding(const CharacterDictionary& dictionary, std::uint16_t id, std::uint32_t offset);

// Keeps an object that was decoded as its record arrived. Where the definition is not the one that counts, the object
// is freed.
void setCharacter(CharacterDictionary& dictionary, std::uint16_t id, std::uint32_t offset, std::uint32_t length,
                  CharacterPtr object);

// One use fewer, for the kinds that count uses. The counter is a wrapping byte.
void releaseCharacter(Character& character);

// Gives up the decoded object; the entry stays registered. Answers the bytes that came back to the pool.
std::uint32_t freeCharacter(CharacterDictionary& dictionary, std::uint16_t id);

// Gives up every decoded object.
void freeCharacters(CharacterDictionary& dictionary);

// Frees decoded objects that nobody uses until at least `bytes` have come back; false when that cannot be reached.
// Shapes go first, then sounds; then what the content's purge order lists, or, without one, the bitmaps.
bool purgeCharacters(CharacterDictionary& dictionary, std::uint32_t bytes);

constexpr bool countsUses(CharacterKind kind) {
    return kind == CharacterKind::shape || kind == CharacterKind::bitmap || kind == CharacterKind::sound ||
           kind == CharacterKind::alphaBitmap;
}

}  // namespace qel
