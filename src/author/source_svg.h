// Pictures of movie sources that lie in SVG files: they become shapes, gradients and lines of the source.
#pragma once

#include <string>
#include <vector>

#include "author/movie_writer.h"
#include "author/source_data.h"

namespace qel::author {

// Replaces every character of the source that names a picture by what it is made of. Adds to `warnings` what the format
// cannot express. Throws SourceError.
void expandPictures(SourceValue& root, const ReadSourceFile& readFile, std::vector<std::string>& warnings);

// The source of a movie of one frame that shows a picture, on white. Throws SvgError.
std::string sourceShowing(std::string_view svg, const std::string& fileName, double scale);

}  // namespace qel::author
