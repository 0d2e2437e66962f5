// Decoding a definition when it is first used: its record streams from the content through the dictionary's buffer.
#pragma once

#include "movie/dictionary.h"

namespace qel {

// Decodes the definition that `entry` of identifier `id` locates. The character belongs to the caller.
//   done              `character` is complete
//   nothing           the record makes no character of a kind that this player draws
//   outOfMemory, brokenDefinition, badContent (the record cannot be read)
Result decodeDefinition(CharacterDictionary& dictionary, std::uint16_t id, const DictionaryEntry& entry,
                        CharacterPtr& character);

}  // namespace qel
