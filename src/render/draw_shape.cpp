#include "render/draw_shape.h"

#include "render/rasterizer.h"
#include "render/stroke.h"

namespace qel {

Result drawShape(RenderContext& context, ShapeKind kind, const ShapeGeometry& geometry, PlacedShape& placed,
                 const Rect& clip) {
    if (geometry.hasFill && failed(fillShape(context, placed, clip))) return Result::outOfMemory;
    const bool hasStrokes = !geometry.lines.empty() && (kind == ShapeKind::plain || geometry.maximumLineWidth > 0);
    if (hasStrokes) strokeShape(context, geometry, placed, clip);
    return Result::done;
}

}  // namespace qel
