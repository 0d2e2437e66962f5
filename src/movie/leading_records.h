// The file header and the records in front of the definitions: movie properties, character directory, name table, block
// table. A body that breaks off inside a field is bad content.
#pragma once

#include "movie/content_reader.h"
#include "movie/dictionary.h"
#include "script/script_context.h"

namespace qel {

struct Movie;
struct MovieHeader;

// `header` holds the whole file header.
void readMovieHeader(ContentReader header, MovieHeader& fields);

Result readCharacterDirectory(ContentReader body, CharacterDictionary& dictionary);
Result readNameTable(ContentReader body, Pool& pool, ScriptContext& scripts);
Result readBlockTable(ContentReader body, Pool& pool, ScriptContext& scripts);
Result readMovieProperties(Movie& movie, ContentReader body);

}  // namespace qel
