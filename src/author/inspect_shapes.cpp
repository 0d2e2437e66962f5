// Shapes, morph shapes and the styles that they name.
#include "author/inspect_fields.h"
#include "author/inspect_movie.h"
#include "author/inspect_names.h"
#include "format/path_records.h"

namespace qel::author::inspector {
namespace {

// A u16 that names a character.
void characterField(Listing& list, MovieFacts& facts, FieldReader& fields, const char* name) {
    const std::size_t at = fields.at();
    const std::uint16_t id = fields.u16(name);
    if (!fields.broken()) noteReference(list, facts, id, at);
}

std::uint32_t colourFormat(Listing& list, FieldReader& fields) {
    const std::uint32_t format = fields.bits(4, nullptr);
    if (!fields.broken()) addWord(list, "format", colourFormatName(static_cast<std::uint8_t>(format)));
    return format;
}

void inspectGradient(Listing& list, FieldReader& fields) {
    fields.align();
    const std::uint32_t radial = fields.bits(2, nullptr);
    if (!fields.broken()) addWord(list, "gradient", radial ? "radial" : "linear");
    const std::uint32_t format = colourFormat(list, fields);
    fields.matrix("matrix");
    fields.align();
    const unsigned count = fields.u8("stops");
    int before = -1;
    for (unsigned i = 0; i < count && !fields.broken() && !list.full; ++i) {
        const std::size_t at = fields.at();
        constexpr std::size_t valueBytes[] = {1, 2, 2, 2, 3};
        const std::size_t stopBytes = 2 + (format < std::size(valueBytes) ? valueBytes[format] : 0);
        PartScope scope(list, "stop", -1, at, stopBytes < fields.left() ? stopBytes : fields.left());
        const int ratio = fields.u8("ratio");
        fields.colour(format, "colour");
        fields.u8("alpha");
        if (!fields.broken() && ratio < before) addWarning(list, at, "stops belong into ascending order");
        before = ratio;
    }
}

void inspectMorph(Listing& list, MovieFacts& facts, FieldReader& fields) {
    characterField(list, facts, fields, "startShape");
    characterField(list, facts, fields, "endShape");
    const std::size_t at = fields.at();
    const unsigned pairs = fields.u8("stylePairs");
    fields.align();
    const unsigned width = fields.bits(5, nullptr);
    const std::vector<std::int32_t> styles = fields.bitList(pairs * 2, width, "styles");
    for (const std::int32_t id : styles) noteReference(list, facts, static_cast<std::uint16_t>(id), at);
}

struct PathCounts {
    unsigned records = 0, groups = 0;
};

void inspectStyleChange(Listing& list, MovieFacts& facts, FieldReader& fields) {
    fields.align();
    bool has[3];
    for (bool& flag : has) flag = fields.bits(1, nullptr) != 0;
    fields.align();
    constexpr const char* names[] = {"line", "fill0", "fill1"};
    for (unsigned i = 0; i < 3; ++i) {
        if (has[i]) characterField(list, facts, fields, names[i]);
    }
}

PathCounts inspectPath(Listing& list, MovieFacts& facts, std::size_t at, std::size_t end) {
    PathCounts counts;
    while (at < end && !list.full) {
        const unsigned header = list.content[at];
        const unsigned kind = header >> pathKindShift;
        const std::size_t length = header & pathLengthMask;
        PartScope scope(list, pathRecordName(static_cast<std::uint8_t>(kind)), static_cast<int>(kind), at,
                        length < end - at ? 1 + length : end - at);
        if (length >= end - at) {
            addError(list, at, "the path record of %zu bytes runs past the end of its shape at %zu", length, end);
            return counts;
        }
        ++counts.records;
        FieldReader fields(list, at + 1, at + 1 + length);
        switch (PathRecordKind{static_cast<std::uint8_t>(kind)}) {
            case PathRecordKind::styleChange:
                ++counts.groups;
                inspectStyleChange(list, facts, fields);
                break;
            case PathRecordKind::lineTo:
            case PathRecordKind::moveTo: fields.point("to"); break;
            case PathRecordKind::lineBy:
            case PathRecordKind::moveBy: fields.point("by"); break;
            case PathRecordKind::curveBy:
                fields.point("controlBy");
                fields.point("endBy");
                break;
        }
        at += 1 + length;
    }
    return counts;
}

}  // namespace

void inspectStyle(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    FieldReader fields(list, record.body, record.end);
    const std::uint16_t id = fields.u16("identifier");
    if (fields.broken()) return;
    noteDefinition(list, facts, id, record);
    fields.align();
    switch (RecordType{record.type}) {
        case RecordType::solidFill:
            fields.colour(colourFormat(list, fields), "colour");
            fields.u8("alpha");
            break;
        case RecordType::gradientFill: inspectGradient(list, fields); break;
        case RecordType::bitmapFill:
            fields.bits(2, "flags");
            fields.align();
            characterField(list, facts, fields, "bitmap");
            fields.matrix("matrix");
            break;
        case RecordType::lineStyle: {
            const std::uint32_t format = colourFormat(list, fields);
            fields.bits(6, "width");
            fields.colour(format, "colour");
            fields.u8("alpha");
            break;
        }
        case RecordType::morphShape: inspectMorph(list, facts, fields); break;
        default: break;  // the caller hands over styles and morph shapes only
    }
}

void inspectShape(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    const auto part = static_cast<std::uint32_t>(list.out.parts.size() - 1);
    FieldReader fields(list, record.body, record.end);
    const std::uint16_t id = fields.u16("identifier");
    if (!fields.broken()) noteDefinition(list, facts, id, record);
    fields.rectangle("bounds");
    fields.align();
    const unsigned pathRecords = fields.u16("pathRecords");
    const std::uint32_t lowGroups = fields.u8(nullptr);
    fields.align();
    const std::uint32_t groups = lowGroups | fields.bits(4, nullptr) << 8;
    if (!fields.broken()) addNumber(list, "styleGroups", groups);
    fields.bits(2, nullptr);
    fields.flag("flag");
    fields.flag("hasFill");
    fields.align();
    const unsigned width = fields.bits(5, nullptr);
    const std::uint32_t bitmapFills = fields.bits(width, nullptr), gradientFills = fields.bits(width, nullptr);
    const std::size_t at = fields.at();
    for (const std::int32_t fill : fields.bitList(bitmapFills, width, "bitmapFills")) {
        noteReference(list, facts, static_cast<std::uint16_t>(fill), at);
    }
    for (const std::int32_t fill : fields.bitList(gradientFills, width, "gradientFills")) {
        noteReference(list, facts, static_cast<std::uint16_t>(fill), at);
    }
    if (fields.broken()) return;
    const std::size_t errors = list.out.errorCount;
    const PathCounts counts = inspectPath(list, facts, fields.at(), record.end);
    if (list.out.errorCount != errors) return;
    if (counts.records != pathRecords) {
        addProblemOf(list, part, Severity::warning, record.body, "%u path records are announced, %u are there",
                     pathRecords, counts.records);
    }
    if (counts.groups != groups) {
        addProblemOf(list, part, Severity::warning, record.body, "%u style groups are announced, %u are there", groups,
                     counts.groups);
    }
}

}  // namespace qel::author::inspector
