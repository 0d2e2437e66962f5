#include "render/style_copies.h"

#include "render/colour_transform.h"

namespace qel {
namespace {

Result copyFill(const FillStyle* fill, Pool& pool, PoolArray<FillCopy>& copies) {
    if (!fill) return Result::done;
    for (const FillCopy& copy : copies)
        if (copy.source == fill) return Result::done;
    const auto& source = static_cast<const SolidFill&>(*fill);
    FillCopy made{.source = fill, .copy = makePooled<SolidFill>(pool)};
    if (!made.copy) return Result::outOfMemory;
    made.copy->kind = source.kind;
    made.copy->pool = &pool;
    made.copy->fillKind = source.fillKind;
    made.copy->order = source.order;
    return copies.append(pool, std::move(made));
}

// One copy of every fill that the groups use.
Result copyFills(const ShapeGeometry& geometry, Pool& pool, PoolArray<FillCopy>& copies) {
    for (const StyleGroup& group : geometry.groups)
        for (const FillStyle* fill : {group.fill0.get(), group.fill1.get()})
            if (failed(copyFill(fill, pool, copies))) return Result::outOfMemory;
    return Result::done;
}

void applyColours(const ColourTransform& colours, PoolArray<FillCopy>& copies) {
    for (FillCopy& copy : copies) {
        const auto& source = static_cast<const SolidFill&>(*copy.source);
        copy.copy->colour = transformColour(colours, source.colour);
        copy.copy->alpha = transformAlpha(colours, source.alpha);
    }
}

}  // namespace

Result recolourShape(const ShapeGeometry& geometry, const ColourTransform& colours, Pool& pool, PlacedShape& placed) {
    if (placed.fillCopies.empty()) {
        if (colours == ColourTransform{}) return Result::done;
        PoolArray<FillCopy> copies;
        if (failed(copyFills(geometry, pool, copies))) return Result::outOfMemory;
        placed.fillCopies = std::move(copies);
        for (FillEdge& edge : placed.table.edges) {
            edge.fill0 = fillDrawn(placed, edge.fill0);
            edge.fill1 = fillDrawn(placed, edge.fill1);
        }
    }
    applyColours(colours, placed.fillCopies);
    return Result::done;
}

}  // namespace qel
