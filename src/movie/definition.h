// Decoding one definition from its record, wherever the bytes come from. Large kinds take their bodies in pieces;
// the others are read whole.
#pragma once

#include "movie/dictionary.h"
#include "movie/record_header.h"

namespace qel {

// A definition whose decoding has begun.
struct Definition {
    std::uint8_t type = 0;  // of its record
    std::uint16_t id = noCharacter;
    CharacterPtr character;
};

// What characters that are read whole fit into: a longer record of such a kind is broken.
inline constexpr std::uint32_t longestWholeRecord = CharacterDictionary::bufferSize;

// Whether the body of a record of this type arrives in pieces.
constexpr bool arrivesInPieces(std::uint8_t type) {
    switch (RecordType{type}) {
        case RecordType::shape:
        case RecordType::bitmap:
        case RecordType::alphaBitmap:
        case RecordType::frame:
        case RecordType::sound:
        case RecordType::button:
        case RecordType::sprite: return true;
        default: return false;
    }
}

// Reads the head of a body, or the whole of it, and moves the reader behind it. `bodyOffset` is where the body lies in
// the content.
//   done              go on with continueDefinition
//   nothing           the record makes no character of a kind that this player draws
//   brokenDefinition  also where the head does not lie whole in `body`
//   outOfMemory
Result beginDefinition(Definition& definition, const ScannedRecord& record, std::uint32_t bodyOffset,
                       ContentReader& body, Pool& pool);

// Takes the next piece of the body. `done` when the character has all its bytes, `nothing` when more are due from the
// reader's cursor on.
Result continueDefinition(Definition& definition, ContentReader& piece, Pool& pool);

// Makes the character fit for use: a shape finds its styles. May read content.
Result finishDefinition(CharacterDictionary& dictionary, Definition& definition);

}  // namespace qel
