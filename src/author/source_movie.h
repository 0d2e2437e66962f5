// Movie sources: readable descriptions from which movies are built. docs/movie-source.md describes the language.
#pragma once

#include <string_view>

#include "author/movie_writer.h"
#include "author/source_data.h"
#include "author/source_document.h"

namespace qel::author {

// The movie that a source describes. `readFile` gives the files that it names; without it there are none. Throws
// SourceError. `warnings` gets what was left out of the pictures that it takes in.
MovieFile buildMovie(std::string_view source, const ReadSourceFile& readFile = {},
                     std::vector<std::string>* warnings = nullptr);

// A movie of one frame that shows an SVG picture, `scale` times as large as it says it is. Throws SourceError and
// SvgError.
MovieFile buildPictureMovie(std::string_view svg, const std::string& fileName, double scale,
                            std::vector<std::string>& warnings);

}  // namespace qel::author
