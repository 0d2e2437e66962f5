#include "author/inspect_saf.h"

#include <algorithm>
#include <bitset>
#include <string>

#include "author/inspect_fields.h"
#include "author/inspect_names.h"
#include "format/file_header.h"
#include "format/saf_records.h"

namespace qel::author::inspector {
namespace {

constexpr std::size_t recordHeaderBytes = 3;

struct SafFacts {
    std::size_t contentLength = 0;
    unsigned depth = 8, objectCount = 0, frameCount = 0, framesMet = 0;
    bool hasHeader = false;
    std::uint32_t headerPart = 0;
    std::bitset<256> defined;
    struct Reference {
        std::uint32_t part, offset;
        bool met;
    };
    Reference references[256] = {};  // by object number: its first use
};

// Listed big-endian; the bounds are the caller's duty.
std::size_t u16At(const Listing& list, std::size_t at) {
    return std::size_t{list.content[at]} << 8 | list.content[at + 1];
}

// Returns where reading goes on: a colour table may lie behind the end of its sub-record.
std::size_t inspectObjectsHeader(Listing& list, SafFacts& facts, std::size_t body, std::size_t end,
                                 std::size_t recordEnd) {
    FieldReader fields(list, body, end, ByteOrder::big);
    facts.objectCount = fields.u8("objectCount");
    const unsigned options = fields.u8(nullptr);
    if (fields.broken()) return end;
    const SafTableMode mode{static_cast<std::uint8_t>(options >> 5 & 3)};
    constexpr const char* modeNames[] = {"none", "table", "greyRamp", "skipped"};
    addWord(list, "colourTable", modeNames[static_cast<unsigned>(mode)]);
    if (mode != SafTableMode::table && mode != SafTableMode::skippedTable) return end;
    FieldReader table(list, fields.at(), recordEnd, ByteOrder::big);
    const std::size_t size = table.u16("tableBytes");
    if (!table.skip(size, "the colour table")) return end;
    return std::max(end, table.at());
}

void inspectDurations(Listing& list, const SafFacts& facts, FieldReader& fields) {
    if (fields.u16("duration") != 0 || fields.broken()) return;
    std::vector<std::int32_t> durations;
    for (unsigned i = 0; i < facts.frameCount && !fields.broken(); ++i) {
        const unsigned duration = fields.u16(nullptr);
        if (!fields.broken()) durations.push_back(static_cast<std::int32_t>(duration));
    }
    addNumbers(list, "durations", durations);
}

std::size_t inspectHeaderPart(Listing& list, SafFacts& facts, SafHeaderType type, std::size_t body, std::size_t end,
                              std::size_t recordEnd) {
    FieldReader fields(list, body, end, ByteOrder::big);
    switch (type) {
        case SafHeaderType::surface:
            fields.u8("width");
            fields.u8("height");
            facts.depth = fields.u8("bitsPerPixel");
            fields.skip(3, "the rest of the surface's description");
            if (fields.broken()) break;
            if (fields.left() >= 4) fields.u32("extraValue");
            if (facts.depth != 1 && facts.depth != 2 && facts.depth != 4 && facts.depth != saf::deepestBitsPerPixel) {
                addError(list, body + 2, "%u bits per pixel are not drawn: 1, 2, 4 and 8 are", facts.depth);
            }
            break;
        case SafHeaderType::objects: return inspectObjectsHeader(list, facts, body, end, recordEnd);
        case SafHeaderType::frames:
            facts.frameCount = fields.u8("frameCount");
            if (facts.frameCount >= saf::frameCountLimit) {
                addError(list, body, "%u frames are more than the %u that are played", facts.frameCount,
                         saf::frameCountLimit - 1);
            }
            break;
        case SafHeaderType::colourKeys: {
            const unsigned count = fields.u8("colourKeys");
            fields.skip(std::size_t{count} * (facts.depth <= 8 ? 2 : facts.depth == 16 ? 3 : 4), "the colour keys");
            break;
        }
        case SafHeaderType::frameDurations: inspectDurations(list, facts, fields); break;
    }
    return end;
}

void inspectContentHeader(Listing& list, SafFacts& facts, std::size_t at, std::size_t recordEnd) {
    facts.hasHeader = true;
    while (at < recordEnd && !list.full) {
        const std::uint8_t type = list.content[at];
        const std::size_t length = recordEnd - at < 2 ? 0 : list.content[at + 1];
        PartScope scope(list, safHeaderName(type), type, at, std::min(2 + length, recordEnd - at));
        if (recordEnd - at < 2 + length) {
            addError(list, at, "the sub-record of %zu bytes runs past the end of its record at %zu", length, recordEnd);
            return;
        }
        at = inspectHeaderPart(list, facts, SafHeaderType{type}, at + 2, at + 2 + length, recordEnd);
    }
}

// Every option announces a byte of its own at the end, in this order.
void inspectPlacementOptions(Listing& list, FieldReader& fields, unsigned options, unsigned scaling) {
    constexpr unsigned xNegative = 0x80, yNegative = 0x40, flipX = 0x20, flipY = 0x10, blend = 0x04, clip = 0x02,
                       rotate = 0x01;
    const int x = fields.u8(nullptr), y = fields.u8(nullptr);
    if (fields.broken()) return;
    addNumber(list, "x", options & xNegative ? -x : x);
    addNumber(list, "y", options & yNegative ? -y : y);
    if (options & flipX) addYesNo(list, "flipX", true);
    if (options & flipY) addYesNo(list, "flipY", true);
    if (scaling & 0x0F) addYesNo(list, "keyed", true);
    if (scaling >> 6 & 3) fields.u8("scaleX");
    if (scaling >> 4 & 3) fields.u8("scaleY");
    if (options & rotate) fields.u8("rotation");
    if (options & clip) {
        for (const char* side : {"clipLeft", "clipTop", "clipRight", "clipBottom"}) fields.u8(side);
    }
    if (options & blend) fields.u8("alpha");
}

void inspectSafFrame(Listing& list, SafFacts& facts, std::size_t body, std::size_t end) {
    FieldReader fields(list, body, end, ByteOrder::big);
    addNumber(list, "frameNumber", facts.framesMet);
    ++facts.framesMet;
    if (facts.depth == 16)
        fields.u16("background");
    else
        fields.u8("background");
    const unsigned count = fields.u8("placements");
    std::size_t at = fields.at();
    for (unsigned i = 0; i < count && !fields.broken() && !list.full; ++i) {
        const std::size_t length = end - at < 2 ? end - at : std::size_t{list.content[at + 1]} + 2;
        PartScope scope(list, "placement", -1, at, std::min(length, end - at));
        if (end - at < 2 || length > end - at) {
            addError(list, at, "placement %u of %u runs past the end of its frame at %zu", i, count, end);
            return;
        }
        FieldReader placement(list, at + 2, at + length, ByteOrder::big);
        const unsigned object = placement.u8("object");
        if (!placement.broken() && !facts.references[object].met) {
            facts.references[object] = {scope.index(), static_cast<std::uint32_t>(at + 2), true};
        }
        const unsigned options = placement.u8(nullptr), scaling = placement.u8(nullptr);
        inspectPlacementOptions(list, placement, options, scaling);
        at += length;
    }
}

// The record and, behind it, its blocks, each after a length of its own. Returns where they end.
std::size_t inspectObject(Listing& list, SafFacts& facts, SafRecordType type, std::size_t body, std::size_t end) {
    const bool wide = type == SafRecordType::objectWideAttribute || type == SafRecordType::maskedObjectWideAttribute;
    const bool masked = type == SafRecordType::maskedObject || type == SafRecordType::maskedObjectWideAttribute;
    FieldReader fields(list, body, end, ByteOrder::big);
    const unsigned first = fields.u8(nullptr);
    if (!fields.broken()) addNumber(list, "object", first & 0x7F);
    const unsigned width = fields.u8("width"), height = fields.u8("height");
    const unsigned encoding = fields.u8(nullptr);
    if (!fields.broken()) addWord(list, "encoding", safEncodingName(static_cast<std::uint8_t>(encoding)));
    if (wide)
        fields.u16("attribute");
    else
        fields.u8("attribute");
    if (!fields.broken()) {
        facts.defined[first & 0x7F] = true;
        if (width == 0 || height == 0) addError(list, body + 1, "an object of %u x %u pixels", width, height);
        const SafImageEncoding known{static_cast<std::uint8_t>(encoding)};
        if (known == SafImageEncoding::refused0 || known == SafImageEncoding::refused16)
            addError(list, body + 3, "image encoding %u is refused", encoding);
    }
    FieldReader blocks(list, end, std::min(facts.contentLength, list.content.size()), ByteOrder::big);
    blocks.skip(blocks.u16("imageBytes"), "the image");
    if (masked) blocks.skip(blocks.u16("maskBytes"), "the mask");
    return blocks.at();
}

bool isObject(SafRecordType type) {
    return type == SafRecordType::object || type == SafRecordType::objectWideAttribute ||
           type == SafRecordType::maskedObject || type == SafRecordType::maskedObjectWideAttribute;
}

// What an object's record takes with its blocks, as far as the file has it.
std::size_t lengthWithBlocks(const Listing& list, SafRecordType type, std::size_t at, std::size_t end,
                             std::size_t limit) {
    if (!isObject(type)) return end - at;
    const bool masked = type == SafRecordType::maskedObject || type == SafRecordType::maskedObjectWideAttribute;
    for (int block = 0; block < (masked ? 2 : 1) && limit - end >= 2; ++block) {
        end = std::min(limit, end + 2 + u16At(list, end));
    }
    return end - at;
}

void inspectSafRecords(Listing& list, SafFacts& facts) {
    const std::size_t limit = std::min(facts.contentLength, list.content.size());
    std::size_t at = saf::firstRecordOffset;
    while (at < limit && !list.full) {
        const SafRecordType type{list.content[at]};
        const std::size_t body = at + recordHeaderBytes;
        const std::size_t length = limit - at < recordHeaderBytes ? 0 : u16At(list, at + 1);
        const bool whole = limit - at >= recordHeaderBytes && length <= limit - body;
        PartScope scope(list, safRecordName(list.content[at]), list.content[at], at,
                        whole ? lengthWithBlocks(list, type, at, body + length, limit) : limit - at);
        if (!whole) {
            addError(list, at, "the record of %zu bytes runs past the end of the content at %zu", length, limit);
            return;
        }
        if (!facts.hasHeader && (isObject(type) || type == SafRecordType::frame)) {
            addError(list, at, "the content header has to stand before objects and frames");
        }
        at = body + length;
        if (type == SafRecordType::end) return;
        if (type == SafRecordType::header)
            inspectContentHeader(list, facts, body, at);
        else if (type == SafRecordType::frame)
            inspectSafFrame(list, facts, body, at);
        else if (isObject(type))
            at = inspectObject(list, facts, type, body, at);
    }
    addError(list, at, "the content ends without a record of type 8");
}

void checkSaf(Listing& list, const SafFacts& facts) {
    if (!facts.hasHeader)
        addProblemOf(list, facts.headerPart, Severity::error, saf::firstRecordOffset, "the content header is missing");
    if (facts.framesMet < facts.frameCount) {
        addProblemOf(list, facts.headerPart, Severity::error, saf::firstRecordOffset,
                     "%u frames are announced, %u are there", facts.frameCount, facts.framesMet);
    } else if (facts.framesMet > facts.frameCount) {
        addProblemOf(list, facts.headerPart, Severity::warning, saf::firstRecordOffset,
                     "%u frames are announced, %u are there", facts.frameCount, facts.framesMet);
    }
    for (unsigned object = 0; object < 256; ++object) {
        const SafFacts::Reference& reference = facts.references[object];
        if (reference.met && !facts.defined[object]) {
            addProblemOf(list, reference.part, Severity::error, reference.offset, "object %u is defined nowhere",
                         object);
        }
    }
}

// Hosts open no content whose byte at this place is 2.
void checkVariant(Listing& list) {
    constexpr std::size_t lengthAt = 8, ahead = 14;
    if (list.content.size() < lengthAt + 2) return;
    const std::size_t at = u16At(list, lengthAt) + ahead;
    if (at < list.content.size() && list.content[at] == 2) {
        addError(list, at, "the byte 2 at offset %zu marks a variant that the player refuses", at);
    }
}

}  // namespace

void inspectSaf(Listing& list) {
    SafFacts facts;
    {
        PartScope scope(list, "header", -1, 0, saf::firstRecordOffset);
        facts.headerPart = scope.index();
        if (list.content.size() < saf::firstRecordOffset) {
            addError(list, list.content.size(), "the header is cut off: %zu of %u bytes", list.content.size(),
                     unsigned{saf::firstRecordOffset});
            return;
        }
        FieldReader fields(list, 3, saf::firstRecordOffset, ByteOrder::big);
        const unsigned flags = fields.u8(nullptr);
        const unsigned version = fields.u8("version");
        facts.contentLength = fields.u16("contentLength");
        if (flags != 0) addError(list, 3, "the byte after \"SAF\" is %u and has to be 0", flags);
        if (version < 1 || version > saf::lastVersion)
            addError(list, saf::versionOffset, "version %u is not played: 1 to %u are", version, saf::lastVersion);
        if (facts.contentLength > list.content.size()) {
            addError(list, list.content.size(), "the content has %zu bytes, the file ends after %zu",
                     facts.contentLength, list.content.size());
        } else if (facts.contentLength < list.content.size()) {
            addWarning(list, facts.contentLength, "%zu bytes from %zu on belong to nothing",
                       list.content.size() - facts.contentLength, facts.contentLength);
        }
        checkVariant(list);
    }
    inspectSafRecords(list, facts);
    checkSaf(list, facts);
}

}  // namespace qel::author::inspector
