#include "author/records.h"

#include <algorithm>
#include <stdexcept>

#include "author/structures.h"
#include "format/path_records.h"

namespace qel::author {
namespace {

void append(Bytes& to, std::span<const std::uint8_t> bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }

// A field that cannot hold its value is an error of the caller's, never cut off.
std::uint32_t checkedCount(std::size_t count, std::size_t most, const char* what) {
    if (count > most)
        throw std::length_error(std::to_string(count) + " " + what + "; at most " + std::to_string(most) + " fit");
    return static_cast<std::uint32_t>(count);
}

// Identifiers and frame numbers in one common width.
unsigned widthOf(std::span<const std::uint16_t> values) {
    unsigned width = 1;
    for (const std::uint32_t value : values) width = std::max(width, unsignedWidth({&value, 1}));
    return width;
}

void writeList(ByteWriter& to, std::span<const std::uint16_t> values, unsigned width) {
    for (const std::uint16_t value : values) to.ub(value, width);
}

Bytes identifiers(std::span<const std::uint16_t> ids) {
    ByteWriter body;
    for (const std::uint16_t id : ids) body.u16(id);
    return body.take();
}

// The widths of a table of locations: every entry uses the default length width.
struct TableWidths {
    unsigned offset = 0, length = 0;
};

template <class Entry>
TableWidths writeTableHead(ByteWriter& to, std::span<const Entry> entries) {
    TableWidths widths;
    for (const Entry& entry : entries) {
        widths.offset = std::max(widths.offset, unsignedWidth({&entry.offset, 1}));
        widths.length = std::max(widths.length, unsignedWidth({&entry.length, 1}));
    }
    constexpr unsigned widestField = 31;
    if (widths.offset > widestField || widths.length > widestField) throw std::out_of_range("a location above 2^31");
    to.u16(checkedCount(entries.size(), 65535, "table entries")).ub(widths.offset, 5).ub(widths.length, 5);
    return widths;
}

}  // namespace

Bytes record(std::uint8_t type, std::span<const std::uint8_t> body) {
    const unsigned lengthBytes = recordLengthBytes(type);
    if (lengthBytes < 4 && body.size() >> (8 * lengthBytes) != 0)
        throw std::length_error("a record of type " + std::to_string(type) + " of " + std::to_string(body.size()) +
                                " bytes");
    return ByteWriter().u8(type).littleEndian(static_cast<std::uint32_t>(body.size()), lengthBytes).bytes(body).take();
}

Bytes solidFill(std::uint16_t id, const Paint& paint) {
    ByteWriter body;
    body.u16(id);
    writePackedColour(body, paint.format, paint.colour);
    return record(RecordType::solidFill, body.u8(paint.alpha).take());
}

Bytes lineStyle(std::uint16_t id, const Paint& paint, unsigned width) {
    ByteWriter body;
    checkedCount(width, 63, "pixels of line width");
    body.u16(id).ub(static_cast<std::uint32_t>(paint.format), 4).ub(width, 6);
    writeColourValue(body, paint.format, paint.colour);
    return record(RecordType::lineStyle, body.u8(paint.alpha).take());
}

Bytes gradientFill(std::uint16_t id, GradientType type, const Matrix& matrix, std::span<const GradientStop> stops,
                   ColourFormat format) {
    ByteWriter body;
    body.u16(id).ub(static_cast<std::uint32_t>(type), 2).ub(static_cast<std::uint32_t>(format), 4);
    writeMatrix(body, matrix);
    body.u8(checkedCount(stops.size(), 255, "gradient stops"));
    for (const GradientStop& stop : stops) {
        body.u8(stop.ratio);
        writeColourValue(body, format, stop.colour);
        body.u8(stop.alpha);
    }
    return record(RecordType::gradientFill, body.take());
}

Bytes bitmapFill(std::uint16_t id, unsigned flags, std::uint16_t bitmapId, const Matrix& matrix) {
    ByteWriter body;
    body.u16(id).ub(flags, 2).u16(bitmapId);
    writeMatrix(body, matrix);
    return record(RecordType::bitmapFill, body.take());
}

Outline& Outline::pathRecord(unsigned kind, std::span<const std::uint8_t> body) {
    bytes_.push_back(static_cast<std::uint8_t>(kind << pathKindShift | (body.size() & pathLengthMask)));
    append(bytes_, body);
    ++recordCount_;
    return *this;
}

Outline& Outline::style(const Styles& styles) {
    ByteWriter body;
    for (const auto& id : {styles.line, styles.fill0, styles.fill1}) body.ub(id ? 1 : 0, 1);
    for (const auto& id : {styles.line, styles.fill0, styles.fill1})
        if (id) body.u16(*id);
    ++groupCount_;
    return pathRecord(static_cast<unsigned>(PathRecordKind::styleChange), body.take());
}

namespace {

Bytes points(std::initializer_list<Point> list) {
    ByteWriter body;
    for (const Point point : list) writePoint(body, point);
    return body.take();
}

}  // namespace

Outline& Outline::moveTo(Point to) { return pathRecord(static_cast<unsigned>(PathRecordKind::moveTo), points({to})); }
Outline& Outline::moveBy(Point by) { return pathRecord(static_cast<unsigned>(PathRecordKind::moveBy), points({by})); }
Outline& Outline::lineTo(Point to) { return pathRecord(static_cast<unsigned>(PathRecordKind::lineTo), points({to})); }
Outline& Outline::lineBy(Point by) { return pathRecord(static_cast<unsigned>(PathRecordKind::lineBy), points({by})); }
Outline& Outline::curveBy(Point control, Point end) {
    return pathRecord(static_cast<unsigned>(PathRecordKind::curveBy), points({control, end}));
}

Bytes shape(const ShapeRecord& fields) {
    const unsigned width = std::max(widthOf(fields.bitmapFills), widthOf(fields.gradientFills));
    const std::uint32_t groups = checkedCount(fields.outline.groupCount(), 4095, "style groups");
    const auto bitmapCount = static_cast<std::uint32_t>(fields.bitmapFills.size());
    const auto gradientCount = static_cast<std::uint32_t>(fields.gradientFills.size());
    const unsigned n = std::max(width, unsignedWidth(std::vector{bitmapCount, gradientCount}));
    ByteWriter body;
    body.u16(fields.id);
    writeRect(body, fields.bounds);
    body.u16(checkedCount(fields.outline.recordCount(), 65535, "path records")).u8(groups & 0xFF).ub(groups >> 8, 4);
    body.ub(0, 2).ub(0, 1).ub(fields.hasFill ? 1 : 0, 1);
    body.ub(n, 5).ub(bitmapCount, n).ub(gradientCount, n);
    writeList(body, fields.bitmapFills, n);
    writeList(body, fields.gradientFills, n);
    return record(RecordType::shape, body.bytes(fields.outline.bytes()).take());
}

Bytes morphShape(std::uint16_t id, std::uint16_t startShape, std::uint16_t endShape, std::span<const StylePair> pairs) {
    unsigned width = 1;
    for (const StylePair& pair : pairs) width = std::max(width, widthOf(std::vector{pair.start, pair.end}));
    ByteWriter body;
    body.u16(id).u16(startShape).u16(endShape).u8(static_cast<std::uint32_t>(pairs.size())).ub(width, 5);
    for (const StylePair& pair : pairs) body.ub(pair.start, width).ub(pair.end, width);
    return record(RecordType::morphShape, body.take());
}

namespace {

// The record counts a block's offset from its own start, and so from in front of a head whose length the block list is
// part of: the fields are wide enough for any head.
void writeSpriteBlocks(ByteWriter& to, std::span<const Block> blocks, std::uint32_t timelineAt) {
    constexpr std::uint32_t mostBytes = 65535;
    constexpr unsigned offsetBits = 18, lengthBits = 16;
    to.u8(0).u16(0).u16(checkedCount(blocks.size(), mostBytes, "blocks of a sprite"));
    to.ub(offsetBits, 5).ub(lengthBits, 5);
    for (const Block& block : blocks) {
        checkedCount(block.offset, mostBytes, "bytes in front of a sprite's block");
        checkedCount(block.length, mostBytes, "bytes of a sprite's block");
        to.ub(0, 1).ub(block.id, 16).ub(block.offset + timelineAt, offsetBits).ub(block.length, lengthBits);
    }
    to.align();
}

constexpr std::size_t spriteLengthField = 2;

// The head behind its length, when the timeline begins at `timelineAt` of the record.
Bytes spriteHead(const SpriteRecord& fields, std::uint32_t timelineAt) {
    ByteWriter head;
    head.u16(fields.id).u16(fields.frameCount).u16(fields.keyFrameCount);
    head.ub(0, 5)
        .ub(fields.blocks.empty() ? 0 : 1, 1)
        .ub(fields.labels.empty() ? 0 : 1, 1)
        .ub(fields.keyFrames.empty() ? 0 : 1, 1);
    if (!fields.blocks.empty()) writeSpriteBlocks(head, fields.blocks, timelineAt);
    if (!fields.labels.empty()) {
        head.u8(0).u16(0).u16(static_cast<std::uint32_t>(fields.labels.size()));
        for (const Label& label : fields.labels) head.u16(label.frame).shortText(label.name);
    }
    if (!fields.keyFrames.empty()) {
        const unsigned width = widthOf(fields.keyFrames);
        head.u24(0).u16(static_cast<std::uint32_t>(fields.keyFrames.size())).ub(width - 1, 4);
        writeList(head, fields.keyFrames, width);
    }
    return head.take();
}

}  // namespace

Bytes sprite(const SpriteRecord& fields) {
    constexpr std::uint32_t recordHeader = 5;
    const std::size_t size = spriteLengthField + spriteHead(fields, 0).size();
    const std::uint32_t headLength = checkedCount(size, 65535, "bytes of a sprite's head");
    const Bytes head = spriteHead(fields, recordHeader + headLength);
    return record(RecordType::sprite, ByteWriter().u16(headLength).bytes(head).bytes(fields.timeline).take());
}

Bytes frame(std::span<const std::uint8_t> items) {
    return record(RecordType::frame, ByteWriter().u16(noCharacter).bytes(items).take());
}

Bytes keyFrame(std::uint16_t cacheId, std::uint16_t number, std::span<const std::uint8_t> items) {
    return record(RecordType::frame, ByteWriter().u16(cacheId).u16(number).bytes(items).take());
}

Bytes backgroundColour(std::uint32_t colour, ColourFormat format) {
    ByteWriter body;
    writePackedColour(body, format, colour);
    return record(RecordType::backgroundColour, body.take());
}

Bytes keyFrameList(std::span<const std::uint16_t> frames) {
    const unsigned width = widthOf(frames);
    ByteWriter body;
    body.u16(static_cast<std::uint32_t>(frames.size())).ub(width - 1, 4);
    writeList(body, frames, width);
    return record(RecordType::keyFrameList, body.take());
}

Bytes purgeOrder(std::span<const std::uint16_t> ids) {
    return record(RecordType::purgeOrder,
                  ByteWriter().u8(checkedCount(ids.size(), 255, "identifiers")).bytes(identifiers(ids)).take());
}

Bytes releaseCharacters(std::span<const std::uint16_t> ids) {
    return record(RecordType::releaseCharacters, identifiers(ids));
}

Bytes nameTable(std::span<const Name> names) {
    ByteWriter body;
    body.u16(static_cast<std::uint32_t>(names.size()));
    for (const Name& entry : names) body.u16(entry.id).shortText(entry.name);
    return record(RecordType::nameTable, body.take());
}

Bytes characterDirectory(std::span<const DirectoryEntry> entries) {
    ByteWriter body;
    const TableWidths widths = writeTableHead(body, entries);
    for (const DirectoryEntry& entry : entries)
        body.ub(0, 1)
            .ub(static_cast<std::uint32_t>(entry.kind), 5)
            .ub(entry.offset, widths.offset)
            .ub(entry.length, widths.length);
    return record(RecordType::characterDirectory, body.take());
}

Bytes blockTable(std::span<const Block> blocks) {
    ByteWriter body;
    const TableWidths widths = writeTableHead(body, blocks);
    for (const Block& block : blocks)
        body.ub(0, 1).ub(block.id, 16).ub(block.offset, widths.offset).ub(block.length, widths.length);
    return record(RecordType::blockTable, body.take());
}

Properties& Properties::property(std::uint8_t type, std::span<const std::uint8_t> body) {
    const unsigned lengthBytes = propertyLengthBytes(type);
    const std::uint32_t length = checkedCount(body.size(), lengthBytes == 1 ? 255 : 65535, "bytes of a property");
    append(body_, ByteWriter().u8(type).littleEndian(length, lengthBytes).bytes(body).take());
    return *this;
}

Properties& Properties::keyFrameIndex(std::span<const KeyFrame> keyFrames) {
    ByteWriter body;
    body.u16(static_cast<std::uint32_t>(keyFrames.size()));
    for (const KeyFrame& keyFrame : keyFrames) body.u16(keyFrame.frame).u16(keyFrame.cacheId);
    return property(PropertyType::keyFrameIndex, body.take());
}

Properties& Properties::labels(std::span<const Label> labels) {
    ByteWriter body;
    body.u16(static_cast<std::uint32_t>(labels.size()));
    for (const Label& label : labels) body.u16(label.frame).shortText(label.name);
    return property(PropertyType::frameLabels, body.take());
}

Properties& Properties::frameCount(std::uint16_t count) {
    return property(PropertyType::frameCount, ByteWriter().u16(count).take());
}

Properties& Properties::background(std::uint32_t colour, ColourFormat format) {
    ByteWriter body;
    writePackedColour(body, format, colour);
    return property(PropertyType::background, body.take());
}

Properties& Properties::frameDuration(std::uint16_t milliseconds) {
    return property(PropertyType::frameDuration, ByteWriter().u16(milliseconds).take());
}

Properties& Properties::frameDurations(std::span<const std::uint16_t> milliseconds) {
    ByteWriter body;
    body.u16(0);
    for (const std::uint16_t duration : milliseconds) body.u16(duration);
    return property(PropertyType::frameDuration, body.take());
}

Properties& Properties::contentLength(std::uint32_t bytes) {
    return property(PropertyType::contentLength, ByteWriter().u32(bytes).take());
}

Properties& Properties::stage(const Rect& rect) {
    ByteWriter body;
    writeRect(body, rect);
    return property(PropertyType::stageRectangle, body.take());
}

Properties& Properties::dictionarySize(std::uint16_t count) {
    return property(PropertyType::dictionarySize, ByteWriter().u16(count).take());
}

Bytes Properties::record() const { return author::record(RecordType::movieProperties, body_); }

}  // namespace qel::author
