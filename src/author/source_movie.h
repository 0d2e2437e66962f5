// Movie sources: readable descriptions from which movies are built. docs/movie-source.md describes the language.
#pragma once

#include <string_view>

#include "author/movie_writer.h"
#include "author/source_document.h"

namespace qel::author {

// The movie that a source describes. Throws SourceError.
MovieFile buildMovie(std::string_view source);

}  // namespace qel::author
