// Writes the bit-packed structures that records share, each from a byte boundary on and in the narrowest fields.
#pragma once

#include "author/byte_writer.h"
#include "format/colour_formats.h"
#include "format/geometry.h"

namespace qel::author {

void writePoint(ByteWriter& to, Point point);
void writeRect(ByteWriter& to, const Rect& rect);

// A field of the matrix that the record leaves out reads as 0, so the scale is written unless a and d are 0. Throws
// std::out_of_range for a value that takes more than 31 bits.
void writeMatrix(ByteWriter& to, const Matrix& matrix);

// As frame items hold it: each offset and each multiplier on its own.
void writeColourTransform(ByteWriter& to, const ColourTransform& transform);

// As commands hold it: a channel has an offset and a multiplier or neither.
void writeCompactColourTransform(ByteWriter& to, const ColourTransform& transform);

// The value of a colour in a format; `colour` is 0xRRGGBB. Formats of fewer bits keep the highest of each channel.
void writeColourValue(ByteWriter& to, ColourFormat format, std::uint32_t colour);

// The same behind its format code.
void writePackedColour(ByteWriter& to, ColourFormat format, std::uint32_t colour);

}  // namespace qel::author
