// Definitions other than shapes and styles.
#include <algorithm>
#include <array>
#include <string>

#include "author/inspect_fields.h"
#include "author/inspect_movie.h"
#include "author/inspect_names.h"
#include "format/key_codes.h"

namespace qel::author::inspector {
namespace {

std::uint16_t readIdentifier(Listing& list, MovieFacts& facts, FieldReader& fields, const RecordPlace& record) {
    const std::uint16_t id = fields.u16("identifier");
    if (!fields.broken()) noteDefinition(list, facts, id, record);
    return id;
}

void readLooks(Listing& list, MovieFacts& facts, FieldReader& fields) {
    for (const char* look : {"upCharacter", "overCharacter", "downCharacter"}) {
        const std::size_t at = fields.at();
        const std::uint16_t id = fields.u16(look);
        if (!fields.broken()) noteReference(list, facts, id, at);
    }
}

// A key code and, where the key has a name, that.
void readKey(Listing& list, FieldReader& fields, const char* code, const char* name) {
    const std::uint8_t key = fields.u8(code);
    if (!fields.broken() && !keyNameOf(key).empty()) addWord(list, name, keyNameOf(key));
}

// What runs the actions of a button's entry. The two key conditions are followed by their key codes.
void inspectConditions(Listing& list, std::size_t at, std::size_t end) {
    while (at < end && !list.full) {
        FieldReader fields(list, at, end);
        const std::size_t length = fields.u16(nullptr);
        if (fields.broken()) return;
        const std::size_t entryEnd = fields.at() + length;
        PartScope scope(list, "condition", -1, at, std::min(entryEnd, end) - at);
        if (entryEnd > end) {
            addError(list, at, "the entry of %zu bytes runs past the end of its button at %zu", length, end);
            return;
        }
        FieldReader entry(list, at + 2, entryEnd);
        entry.bits(4, nullptr);
        const std::uint32_t conditions = entry.bits(4, nullptr);
        std::string words;
        if (conditions & 8) words += "focusLost ";
        if (conditions & 4) words += "focusGained ";
        if (conditions & 2) words += "keyWhileFocused ";
        if (conditions & 1) words += "key ";
        if (!entry.broken()) addWord(list, "when", std::string_view{words}.substr(0, words.size() - !words.empty()));
        if (conditions & 2) readKey(list, entry, "focusedKey", "focusedKeyName");
        if (conditions & 1) readKey(list, entry, "key", "keyName");
        if (!entry.broken()) inspectActions(list, entry.at(), entryEnd);
        at = entryEnd;
    }
}

void inspectSpriteBlocks(Listing& list, FieldReader& fields, unsigned headLength) {
    fields.skip(3, "the block list's head");
    const unsigned count = fields.u16("blocks");
    fields.align();
    const unsigned offsetBits = fields.bits(5, nullptr);
    const unsigned defaultLengthBits = fields.bits(5, nullptr);
    std::vector<std::int32_t> identifiers, offsets, lengths;
    for (unsigned i = 0; i < count && !fields.broken(); ++i) {
        const unsigned lengthBits = fields.flag(nullptr) ? fields.bits(5, nullptr) : defaultLengthBits;
        identifiers.push_back(static_cast<std::int32_t>(fields.bits(16, nullptr)));
        // Content counts from the record's start; here, as on the device, from that of the timeline.
        offsets.push_back(static_cast<std::uint16_t>(fields.bits(offsetBits, nullptr) - headLength - 5));
        lengths.push_back(static_cast<std::uint16_t>(fields.bits(lengthBits, nullptr)));
    }
    if (fields.broken()) return;
    addNumbers(list, "blockIdentifiers", identifiers);
    addNumbers(list, "blockOffsets", offsets);
    addNumbers(list, "blockLengths", lengths);
}

// The head of a sprite behind its counts. Labels are parts of their own, so they are passed over first and listed last.
void inspectSpriteTables(Listing& list, FieldReader& fields, unsigned headLength) {
    fields.align();
    fields.bits(5, nullptr);
    const bool hasBlocks = fields.flag(nullptr), hasLabels = fields.flag(nullptr), hasKeyFrames = fields.flag(nullptr);
    if (hasBlocks) inspectSpriteBlocks(list, fields, headLength);
    unsigned labels = 0;
    std::size_t labelsAt = 0;
    if (hasLabels) {
        fields.align();
        fields.skip(3, "the label list's head");
        labels = fields.u16("labels");
        labelsAt = fields.at();
        for (unsigned i = 0; i < labels && !fields.broken(); ++i) {
            fields.u16(nullptr);
            fields.skip(fields.u8(nullptr), "label");
        }
    }
    const std::size_t labelsEnd = fields.at();
    if (hasKeyFrames) {
        fields.align();
        fields.skip(3, "the key frame list's head");
        const unsigned count = fields.u16(nullptr);
        fields.align();
        const unsigned width = fields.bits(4, nullptr) + 1;
        if (!fields.broken()) fields.bitList(count, width, "keyFrames");
    }
    if (!fields.broken()) inspectNamedNumbers(list, {"label", "frame", "label"}, labels, labelsAt, labelsEnd);
}

struct SpriteFrames {
    unsigned frames = 0, keyFrames = 0;
    bool whole = true;
};

SpriteFrames inspectSpriteTimeline(Listing& list, MovieFacts& facts, std::size_t at, std::size_t end) {
    SpriteFrames met;
    while (at < end && !list.full) {
        RecordPlace record;
        met.whole = readRecordHeader(list, at, end, record);
        if (!met.whole) return met;
        PartScope scope(list, recordName(record.type), record.type, at, std::min(record.end, end) - at);
        if (record.end > end) {
            addError(list, at, "the record of %zu bytes runs past the end of its sprite at %zu",
                     record.end - record.body, end);
            met.whole = false;
            return met;
        }
        if (RecordType{record.type} == RecordType::frame) {
            met.keyFrames += inspectFrame(list, facts, record, TimelineOf::sprite, met.frames);
            ++met.frames;
        } else {
            addWarning(list, at, "only frames belong into the timeline of a sprite");
        }
        at = record.end;
    }
    return met;
}

}  // namespace

void inspectSound(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    FieldReader fields(list, record.body, record.end);
    readIdentifier(list, facts, fields, record);
    fields.u16("sampleValue");
    fields.align();
    const std::uint32_t format = fields.bits(4, "format");
    fields.bits(2, "rateCode");
    fields.flag("flag1");
    fields.flag("flag2");
    fields.u8("channelValue");
    if (fields.broken()) return;
    addNumber(list, "dataBytes", static_cast<std::int64_t>(fields.left()));
    constexpr std::uint32_t playedFormats = 1u << 8 | 1u << 0 | 1u << 4 | 1u << 5 | 1u << 7 | 1u << 10;
    if (!(playedFormats >> format & 1)) addWarning(list, record.body + 4, "sounds of format %u are not played", format);
}

void inspectButton(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    FieldReader fields(list, record.body, record.end);
    readIdentifier(list, facts, fields, record);
    readLooks(list, facts, fields);
    const bool isCommandButton = RecordType{record.type} == RecordType::commandButton;
    if (isCommandButton) readKey(list, fields, "key", "keyName");
    fields.u8(nullptr);
    if (fields.broken()) return;
    if (isCommandButton) {
        inspectCommandList(list, facts, fields.at(), record.end);
    } else {
        inspectConditions(list, fields.at(), record.end);
    }
}

void inspectSprite(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    const auto part = static_cast<std::uint32_t>(list.out.parts.size() - 1);
    FieldReader head(list, record.body, record.end);
    const unsigned headLength = head.u16("headLength");
    readIdentifier(list, facts, head, record);
    if (head.broken()) return;
    if (headLength > record.end - record.body) {
        addError(list, record.body, "the head of %u bytes runs past the end of its record at %zu", headLength,
                 record.end);
        return;
    }
    const std::size_t timeline = record.body + headLength;
    if (timeline < head.at()) {
        addError(list, record.body, "the head of %u bytes is too short for its fields", headLength);
        return;
    }
    FieldReader fields(list, head.at(), timeline);
    const unsigned frameCount = fields.u16("frameCount");
    const unsigned keyFrameCount = fields.u16("keyFrameCount");
    inspectSpriteTables(list, fields, headLength);
    const SpriteFrames met = inspectSpriteTimeline(list, facts, timeline, record.end);
    if (fields.broken() || !met.whole || list.full) return;
    if (met.frames != frameCount) {
        addProblemOf(list, part, Severity::warning, timeline, "%u frames are announced, %u are there", frameCount,
                     met.frames);
    }
    if (met.keyFrames != keyFrameCount) {
        addProblemOf(list, part, Severity::warning, timeline, "%u key frames are announced, %u are there",
                     keyFrameCount, met.keyFrames);
    }
}

void inspectTextField(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    constexpr unsigned hasVariable = 0x200, hasExtraValue = 0x100;
    FieldReader fields(list, record.body, record.end);
    readIdentifier(list, facts, fields, record);
    fields.rectangle("bounds");
    fields.align();
    const unsigned flags = fields.u16(nullptr);
    if (!fields.broken()) addHex(list, "flags", flags);
    if (flags & hasVariable) fields.shortText("variable");
    if (flags & hasExtraValue) fields.u16("extraValue");
    std::array<std::int32_t, 3> values;
    for (std::int32_t& value : values) value = fields.u8(nullptr);
    if (!fields.broken()) addNumbers(list, "values", values);
    fields.colour(4, "colour");
    fields.u8("value4");
    fields.shortText("text");
}

void inspectCompressionTable(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    FieldReader fields(list, record.body, record.end);
    readIdentifier(list, facts, fields, record);
    addNumber(list, "tableBytes", static_cast<std::int64_t>(fields.left()));
}

void inspectBitmap(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    enum Compression { deflated = 0, jpeg = 1 };
    const bool withAlpha = RecordType{record.type} == RecordType::alphaBitmap;
    FieldReader fields(list, record.body, record.end);
    readIdentifier(list, facts, fields, record);
    fields.align();
    const std::uint32_t compression = fields.bits(4, nullptr);
    const std::uint32_t format = fields.bits(4, nullptr);
    if (fields.broken()) return;
    addWord(list, "compression", compression == deflated ? "deflated" : compression == jpeg ? "jpeg" : unknownName);
    addWord(list, "format", colourFormatName(static_cast<std::uint8_t>(format)));
    const bool hasTable = fields.flag("hasTable"), hasMask = fields.flag("hasMask");
    fields.flag("option");
    const bool hasKey = fields.flag("hasKey");
    const Point size = fields.unsignedPoint("size");
    if (!withAlpha && hasKey && format < 5) {
        fields.align();
        // The key of a bitmap with a colour table is an index into it.
        if (format == 0 && hasTable)
            fields.u8("keyIndex");
        else
            fields.colour(format, "keyColour");
    }
    fields.point("origin");
    fields.align();
    std::size_t dataBytes = fields.u16("dataLength");
    if (hasTable) {
        const unsigned last = fields.u8(nullptr);
        if (!fields.broken()) addNumber(list, "tableEntries", last + 1);
        dataBytes += fields.u16("tableLength");
    }
    if (!withAlpha && hasMask) dataBytes += fields.u16("maskLength");
    if (withAlpha && compression == jpeg) dataBytes += fields.u16("alphaLength");
    if (fields.broken()) return;
    if (size.x == 0 || size.y == 0) addError(list, record.body + 4, "a bitmap without pixels");
    if (dataBytes > fields.left()) {
        addError(list, fields.at(), "%zu bytes of data are announced, the record has %zu", dataBytes, fields.left());
    }
}

}  // namespace qel::author::inspector
