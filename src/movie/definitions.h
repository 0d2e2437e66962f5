// Decoding one definition: its record streams from the content through the dictionary's buffer, in pieces where the
// kind allows it.
#pragma once

#include "movie/dictionary.h"

namespace qel {

// Decodes the definition that `entry` of identifier `id` locates. The character belongs to the caller.
//   done              `character` is complete
//   nothing           the record makes no character of a kind that this player draws
//   outOfMemory, brokenDefinition, badContent (the record cannot be read)
Result decodeDefinition(CharacterDictionary& dictionary, std::uint16_t id, const DictionaryEntry& entry,
                        Character*& character);

}  // namespace qel
