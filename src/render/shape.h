// A shape character: outlines of straight and curved segments in whole pixels, grouped by the styles that apply to
// them.
#pragma once

#include <cstdint>

#include "format/geometry.h"
#include "movie/character.h"
#include "movie/content_reader.h"
#include "render/styles.h"

namespace qel {

// Segments of one shape need not be connected.
struct PathSegment {
    bool straight = true;
    Point start;
    Point middle;  // of a curve the control point
    Point end;
};

// A style that the groups of a shape name, once.
template <class Style>
struct StyleUse {
    std::uint16_t id = noCharacter;
    CharacterHold<Style> style;
};
using FillUse = StyleUse<FillStyle>;
using LineUse = StyleUse<LineStyle>;

// The styles of the segments from the previous group's end up to this one's. Identifiers come from the record; once the
// shape has loaded, the indexes say where they stand in the shape's fills and lines.
struct StyleGroup {
    static constexpr std::uint16_t none = 65535;

    std::uint32_t end = 0;  // index of the first segment behind the group
    std::uint16_t fill0Id = noCharacter, fill1Id = noCharacter, lineId = noCharacter;
    std::uint16_t fill0 = none, fill1 = none, line = none;
};

struct ShapeGeometry {
    bool hasFill = false;
    std::uint8_t maximumLineWidth = 0;  // of the line styles that the groups name
    PoolArray<PathSegment> segments;
    PoolArray<StyleGroup> groups;
    PoolArray<FillUse> fills;
    PoolArray<LineUse> lines;
};

struct Shape : Character {
    bool loading = true;
    bool flag = false;    // kept, not used by rendering
    Rect declaredBounds;  // kept; drawing uses computed bounds
    PoolArray<std::uint16_t> bitmapFillIds, gradientFillIds;
    ShapeGeometry geometry;

    // Where the path stream stands: the records still due, and the pen.
    std::uint32_t bytesLeft = 0;
    Point pen;
};

// Reads the head of a shape's body (behind the identifier). `bodyLength` is the length of the whole body, identifier
// included; the reader is left on the first path record.
Result beginShape(ContentReader& body, std::uint32_t bodyLength, Pool& pool, PoolPtr<Shape>& shape);

// Takes the path records that lie whole in `reader` and moves it past them. `done` when the stream is used up,
// `nothing` when more bytes are needed from the reader's cursor on.
Result continueShape(Shape& shape, ContentReader& reader, Pool& pool);

}  // namespace qel
