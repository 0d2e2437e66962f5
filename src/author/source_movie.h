// Movie sources: readable descriptions from which movies are built. docs/movie-source.md describes the language.
#pragma once

#include <string_view>

#include "author/movie_writer.h"
#include "author/source_data.h"
#include "author/source_document.h"

namespace qel::author {

// The movie that a source describes. `readFile` gives the files that it names; without it there are none. Throws
// SourceError.
MovieFile buildMovie(std::string_view source, const ReadSourceFile& readFile = {});

}  // namespace qel::author
