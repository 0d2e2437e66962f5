#include "render/shape.h"

#include <algorithm>

#include "format/integers.h"
#include "format/path_records.h"
#include "movie/structures.h"

namespace qel {
namespace {

Result readFillIds(ContentReader& body, unsigned bits, std::uint32_t count, Pool& pool, PoolArray<std::uint16_t>& ids) {
    if (std::uint64_t{count} * bits > (std::uint64_t{body.left()} + 1) * 8) return Result::brokenDefinition;
    if (failed(ids.assignZeros(pool, count))) return Result::outOfMemory;
    for (std::uint16_t& id : ids) id = static_cast<std::uint16_t>(body.ub(bits));
    return body.ok() ? Result::done : Result::brokenDefinition;
}

Point offsetBy(Point point, Point by) { return {wrap16(point.x + by.x), wrap16(point.y + by.y)}; }

// Half of a relative step, as the device stores it: the lowest bit is dropped before the shift.
Point halfway(Point from, Point by) {
    return {wrap16(from.x + ((by.x & ~1) >> 1)), wrap16(from.y + ((by.y & ~1) >> 1))};
}

Point middleOf(Point a, Point b) { return {wrap16((a.x + b.x) >> 1), wrap16((a.y + b.y) >> 1)}; }

// A style that the record does not name is inherited from the group before; the first group has none.
Result openGroup(ShapeGeometry& geometry, ContentReader& body, Pool& pool) {
    StyleGroup group;
    if (!geometry.groups.empty()) {
        StyleGroup& before = geometry.groups.back();
        before.end = geometry.segments.size();
        group.fill0Id = before.fill0Id;
        group.fill1Id = before.fill1Id;
        group.lineId = before.lineId;
    } else if (!geometry.segments.empty()) {
        // Segments in front of the first style record have no style: a group of their own keeps them apart.
        StyleGroup unstyled;
        unstyled.end = geometry.segments.size();
        if (failed(geometry.groups.append(pool, std::move(unstyled)))) return Result::outOfMemory;
    }
    body.align();
    const bool hasLine = body.ub(1) != 0, hasFill0 = body.ub(1) != 0, hasFill1 = body.ub(1) != 0;
    if (hasLine) group.lineId = body.u16();
    if (hasFill0) group.fill0Id = body.u16();
    if (hasFill1) group.fill1Id = body.u16();
    return geometry.groups.append(pool, std::move(group));
}

Result takePathRecord(Shape& shape, PathRecordKind kind, ContentReader body, Pool& pool) {
    ShapeGeometry& geometry = shape.geometry;
    const Point pen = shape.pen;
    switch (kind) {
        case PathRecordKind::styleChange:
            if (failed(openGroup(geometry, body, pool))) return Result::outOfMemory;
            break;
        case PathRecordKind::lineTo: {
            shape.pen = readPoint(body);
            const PathSegment line{
                .straight = true, .start = pen, .middle = middleOf(pen, shape.pen), .end = shape.pen};
            if (failed(geometry.segments.append(pool, line))) return Result::outOfMemory;
            break;
        }
        case PathRecordKind::lineBy: {
            const Point by = readPoint(body);
            shape.pen = offsetBy(pen, by);
            const PathSegment line{.straight = true, .start = pen, .middle = halfway(pen, by), .end = shape.pen};
            if (failed(geometry.segments.append(pool, line))) return Result::outOfMemory;
            break;
        }
        case PathRecordKind::curveBy: {
            const Point control = offsetBy(pen, readPoint(body));
            shape.pen = offsetBy(control, readPoint(body));
            const PathSegment curve{.straight = false, .start = pen, .middle = control, .end = shape.pen};
            if (failed(geometry.segments.append(pool, curve))) return Result::outOfMemory;
            break;
        }
        case PathRecordKind::moveTo: shape.pen = readPoint(body); break;
        case PathRecordKind::moveBy: shape.pen = offsetBy(pen, readPoint(body)); break;
        default: return Result::done;  // a kind that nobody draws
    }
    return body.ok() ? Result::done : Result::brokenDefinition;
}

}  // namespace

Result beginShape(ContentReader& body, std::uint32_t bodyLength, Pool& pool, PoolPtr<Shape>& shape) {
    const std::size_t start = body.cursor();
    PoolPtr<Shape> loading = makePooled<Shape>(pool);
    if (!loading) return Result::outOfMemory;
    loading->kind = CharacterKind::shape;
    loading->pool = &pool;
    loading->declaredBounds = readRect(body);
    const std::uint32_t pathRecords = body.u16();
    std::uint32_t styleGroups = body.u8();
    body.align();
    styleGroups |= body.ub(4) << 8;
    body.ub(2);  // reserved
    loading->flag = body.ub(1) != 0;
    loading->geometry.hasFill = body.ub(1) != 0;
    const unsigned bits = body.ub(5);
    const std::uint32_t bitmapFills = body.ub(bits), gradientFills = body.ub(bits);
    if (!body.ok()) return Result::brokenDefinition;
    for (auto [count, ids] :
         {std::pair{bitmapFills, &loading->bitmapFillIds}, {gradientFills, &loading->gradientFillIds}}) {
        const Result read = readFillIds(body, bits, count, pool, *ids);
        if (failed(read)) return read;
    }
    body.align();
    const std::uint32_t used = 2 + static_cast<std::uint32_t>(body.cursor() - start);
    if (used > bodyLength) return Result::brokenDefinition;
    loading->bytesLeft = bodyLength - used;

    // The announced counts give the room at once. Where the bytes cannot hold as many, the counts are wrong.
    constexpr std::uint32_t leastRecordBytes = 2;
    const std::uint32_t most = loading->bytesLeft / leastRecordBytes;
    ShapeGeometry& geometry = loading->geometry;
    if (failed(geometry.segments.reserve(pool, std::min(pathRecords, most))) ||
        failed(geometry.groups.reserve(pool, std::min(styleGroups, most))))
        return Result::outOfMemory;
    shape = std::move(loading);
    return Result::done;
}

Result continueShape(Shape& shape, ContentReader& reader, Pool& pool) {
    while (shape.bytesLeft > 0) {
        ContentReader ahead = reader;
        if (!ahead.available(1)) return Result::nothing;
        const unsigned header = ahead.u8();
        const unsigned length = header & pathLengthMask;
        if (1 + length > shape.bytesLeft) return Result::brokenDefinition;
        if (!ahead.available(length)) return Result::nothing;
        const Result taken =
            takePathRecord(shape, static_cast<PathRecordKind>(header >> pathKindShift), ahead.section(length), pool);
        if (failed(taken)) return taken;
        shape.bytesLeft -= 1 + length;
        reader = ahead;
    }
    if (!shape.geometry.groups.empty()) shape.geometry.groups.back().end = shape.geometry.segments.size();
    shape.loading = false;
    return Result::done;
}

}  // namespace qel
