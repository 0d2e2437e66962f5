// The bit-packed structures that records share. Each starts at a byte boundary. Reading past the end gives zeros and
// spoils the reader.
#pragma once

#include "format/geometry.h"
#include "movie/content_reader.h"

namespace qel {

Point readPoint(ContentReader& reader);
Rect readRect(ContentReader& reader);

// A matrix starts from zeros, not from the identity: one without its scale has a = d = 0.
Matrix readMatrix(ContentReader& reader);

// Which channels of a colour transform a record holds: in frame items offsets and multipliers each have their bits, in
// commands they share them.
enum class ColourTransformForm : std::uint8_t { full, compact };
ColourTransform readColourTransform(ContentReader& reader, ColourTransformForm form);

// A colour in the given stored format, from the next byte boundary on, as RGB565. A format code that no colour has
// reads nothing and gives `before`.
std::uint16_t readColour(ContentReader& reader, std::uint32_t format, std::uint16_t before);

// A colour behind its own 4-bit format code.
std::uint16_t readPackedColour(ContentReader& reader, std::uint16_t before);

}  // namespace qel
