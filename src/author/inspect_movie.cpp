#include "author/inspect_movie.h"

#include <algorithm>

#include "author/inspect_fields.h"
#include "author/inspect_names.h"
#include "format/file_header.h"

namespace qel::author::inspector {
namespace {

// What loading reads at a time, and so the most that the records it reads in place may have.
constexpr std::size_t chunkBytes = 6144;
// The dictionary's buffer: definitions that are read whole fit into it.
constexpr std::size_t wholeDefinitionBytes = 2078;

struct MovieHeader {
    unsigned version = 0;
    FontMode fontMode = FontMode::builtIn;
    bool trailer = false, hasExtension = false;
};

const char* fontModeName(FontMode mode) {
    switch (mode) {
        case FontMode::builtIn: return "builtIn";
        case FontMode::block: return "block";
        case FontMode::none2:
        case FontMode::none3: break;
    }
    return "none";
}

// The header is whole when this is called.
MovieHeader inspectHeader(Listing& list, MovieFacts& facts) {
    MovieHeader header;
    const std::uint8_t flags = list.content[vis::flagsOffset];
    header.version = list.content[vis::versionOffset];
    header.fontMode = FontMode{static_cast<std::uint8_t>((flags & vis::fontModeMask) >> vis::fontModeShift)};
    header.trailer = flags & vis::trailer;
    header.hasExtension = list.content[vis::extensionOffset] & vis::hasExtension;
    facts.scanDefinitions = flags & vis::scanDefinitions;

    PartScope scope(list, "header", -1, 0, vis::headerSize);
    facts.headerPart = scope.index();
    addNumber(list, "version", header.version);
    addYesNo(list, "scanDefinitions", facts.scanDefinitions);
    addYesNo(list, "dropFrames", flags & vis::dropFrames);
    addWord(list, "fontMode", fontModeName(header.fontMode));
    addYesNo(list, "fitToScreen", (flags & vis::fitToScreen) || header.version < vis::firstFitVersion);
    addYesNo(list, "hasExtension", header.hasExtension);
    FieldReader fields(list, vis::contentLengthOffset, vis::headerSize);
    facts.contentLength = fields.u32("contentLength");
    facts.frameCount = fields.u16("frameCount");
    fields.u16("width");
    fields.u16("height");
    return header;
}

void inspectDefinition(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    const auto part = static_cast<std::uint32_t>(list.out.parts.size() - 1);
    switch (RecordType{record.type}) {
        case RecordType::shape: inspectShape(list, facts, record); return;
        case RecordType::compressionTable: inspectCompressionTable(list, facts, record); break;
        case RecordType::bitmap:
        case RecordType::alphaBitmap: inspectBitmap(list, facts, record); return;
        case RecordType::textField: inspectTextField(list, facts, record); break;
        case RecordType::sound: inspectSound(list, facts, record); return;
        case RecordType::sprite: inspectSprite(list, facts, record); return;
        case RecordType::button: inspectButton(list, facts, record); return;
        case RecordType::commandButton: inspectButton(list, facts, record); break;
        default: inspectStyle(list, facts, record); break;
    }
    if (record.end - record.offset > wholeDefinitionBytes) {
        addProblemOf(list, part, Severity::error, record.offset,
                     "this definition is read whole and may have %zu bytes, not %zu", wholeDefinitionBytes,
                     record.end - record.offset);
    }
}

void inspectIdentifiers(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    FieldReader fields(list, record.body, record.end);
    std::size_t count = fields.left() / 2;
    if (RecordType{record.type} == RecordType::purgeOrder) count = fields.u8("count");
    std::vector<std::int32_t> identifiers;
    for (std::size_t i = 0; i < count && !fields.broken(); ++i) {
        const std::size_t at = fields.at();
        const std::uint16_t id = fields.u16(nullptr);
        if (fields.broken()) break;
        identifiers.push_back(id);
        noteReference(list, facts, id, at);
    }
    addNumbers(list, "identifiers", identifiers);
}

// Everything that may come after record 1.
void inspectRecordBody(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    const RecordType type{record.type};
    if (type == RecordType::frame) {
        inspectFrame(list, facts, record, TimelineOf::movie, facts.framesMet);
        ++facts.framesMet;
        return;
    }
    if (definedKind(record.type) != CharacterKind::none) {
        inspectDefinition(list, facts, record);
        return;
    }
    FieldReader fields(list, record.body, record.end);
    switch (type) {
        case RecordType::keyFrameList: {
            const unsigned count = fields.u16(nullptr);
            fields.align();
            const unsigned width = fields.bits(4, nullptr) + 1;
            if (!fields.broken()) fields.bitList(count, width, "frames");
            break;
        }
        case RecordType::purgeOrder:
        case RecordType::releaseCharacters: inspectIdentifiers(list, facts, record); break;
        case RecordType::backgroundColour: {
            const std::uint32_t format = fields.bits(4, nullptr);
            if (!fields.broken()) addWord(list, "format", colourFormatName(static_cast<std::uint8_t>(format)));
            fields.colour(format, "colour");
            break;
        }
        case RecordType::movieProperties:
        case RecordType::characterDirectory:
        case RecordType::nameTable:
        case RecordType::blockTable:
            addWarning(list, record.offset, "skipped: it counts only before record 1 ends");
            break;
        default: break;
    }
}

enum class Leading : std::uint8_t { first, afterDirectory, afterNames, afterBlocks, done };

bool mayFollow(Leading stage, std::uint8_t type) {
    switch (RecordType{type}) {
        case RecordType::movieProperties: return true;
        case RecordType::characterDirectory: return stage == Leading::first;
        case RecordType::nameTable: return stage != Leading::afterNames;
        case RecordType::blockTable: return stage == Leading::first || stage == Leading::afterDirectory;
        default: return false;
    }
}

// A record before the definitions begin. Answers what may follow it.
Leading inspectLeadingRecord(Listing& list, MovieFacts& facts, const RecordPlace& record, Leading stage) {
    const RecordType type{record.type};
    if (!mayFollow(stage, record.type)) {
        addError(list, record.offset, "a record of type %u cannot stand here: %s", unsigned{record.type},
                 stage == Leading::first ? "the first record is of type 1, 2, 19 or 20"
                                         : "record 1 has to follow, with record 20, then 19, before it at most");
        inspectRecordBody(list, facts, record);
        return Leading::done;
    }
    if (type != RecordType::characterDirectory && record.end - record.offset > chunkBytes) {
        addError(list, record.offset, "this record is read in one piece and may have %zu bytes, not %zu", chunkBytes,
                 record.end - record.offset);
    }
    switch (type) {
        case RecordType::characterDirectory:
            inspectCharacterDirectory(list, facts, record);
            return Leading::afterDirectory;
        case RecordType::nameTable: inspectNameTable(list, record); return Leading::afterNames;
        case RecordType::blockTable: inspectBlockTable(list, record); return Leading::afterBlocks;
        default: inspectMovieProperties(list, facts, record); return Leading::done;
    }
}

void inspectRecords(Listing& list, MovieFacts& facts) {
    Leading stage = Leading::first;
    std::size_t at = vis::headerSize;
    const std::size_t limit = facts.recordsEnd;
    while (at < limit && !list.full) {
        RecordPlace record;
        if (!readRecordHeader(list, at, limit, record)) return;
        PartScope scope(list, recordName(record.type), record.type, at, std::min(record.end, limit) - at);
        if (record.end > limit) {
            addError(list, at, "the record of %zu bytes runs past the end of the content at %zu",
                     record.end - record.body, limit);
            return;
        }
        at = record.end;
        if (RecordType{record.type} == RecordType::end && stage == Leading::done) {
            if (at < std::min<std::size_t>(limit, facts.contentLength)) {
                addWarning(list, at, "%zu bytes after the end record are never reached",
                           std::min<std::size_t>(limit, facts.contentLength) - at);
            }
            return;
        }
        if (stage != Leading::done)
            stage = inspectLeadingRecord(list, facts, record, stage);
        else
            inspectRecordBody(list, facts, record);
    }
    if (list.full) return;
    if (stage != Leading::done) addError(list, at, "record 1, the movie's properties, is missing");
    addError(list, at, "the content ends without record 254");
}

// The checks that need to have seen every record.
void checkReferences(Listing& list, const MovieFacts& facts) {
    for (const Definition& definition : facts.definitions) {
        const std::uint32_t part = facts.identifiers[definition.id].definedBy - 1;
        if (facts.hasDictionary && definition.id >= facts.dictionarySize) {
            addProblemOf(list, part, Severity::warning, definition.offset,
                         "identifier %u lies outside the dictionary of %u entries and is not registered",
                         unsigned{definition.id}, facts.dictionarySize);
        }
    }
    for (std::size_t id = 0; id < facts.identifiers.size(); ++id) {
        const MovieFacts::Identifier& identifier = facts.identifiers[id];
        if (identifier.namedBy != 0 && identifier.definedBy == 0) {
            addProblemOf(list, identifier.namedBy - 1, Severity::warning, identifier.namedAt,
                         "character %zu is defined nowhere", id);
        }
    }
}

void checkDirectory(Listing& list, const MovieFacts& facts) {
    for (const DirectoryEntry& entry : facts.directory) {
        const auto found =
            std::lower_bound(facts.definitions.begin(), facts.definitions.end(), entry.offset,
                             [](const Definition& d, std::uint32_t offset) { return d.offset < offset; });
        if (found == facts.definitions.end() || found->offset != entry.offset || found->id != entry.id) {
            addProblemOf(list, entry.part, Severity::warning, entry.offset,
                         "no definition of character %u begins at %u", unsigned{entry.id}, entry.offset);
        } else if (found->length != entry.length || static_cast<std::uint8_t>(found->kind) != entry.kind) {
            addProblemOf(list, entry.part, Severity::warning, entry.offset,
                         "the definition at %u is a %s record of %u bytes, not as listed here", entry.offset,
                         characterKindName(static_cast<std::uint8_t>(found->kind)), found->length);
        }
    }
}

void inspectBehindContent(Listing& list, const MovieFacts& facts, const MovieHeader& header) {
    if (facts.contentLength > list.content.size()) return;  // the header's problem
    // Mode 3 has no glyphs, but its bit moves the extension block all the same.
    const bool fontBlock = header.fontMode == FontMode::block || (header.trailer && header.hasExtension);
    const std::size_t at = inspectTrailers(list, facts.contentLength, {fontBlock, header.hasExtension});
    if (at < list.content.size()) {
        addProblemOf(list, facts.headerPart, Severity::warning, at, "%zu bytes from %zu on belong to nothing",
                     list.content.size() - at, at);
    }
}

MovieFacts::Identifier& identifierFacts(MovieFacts& facts, std::uint16_t id) {
    if (id >= facts.identifiers.size()) facts.identifiers.resize(id + 1u);
    return facts.identifiers[id];
}

}  // namespace

bool readRecordHeader(Listing& list, std::size_t at, std::size_t limit, RecordPlace& place) {
    place.type = list.content[at];
    place.offset = at;
    const unsigned lengthBytes = recordLengthBytes(place.type);
    if (limit - at < 1 + lengthBytes) {
        PartScope scope(list, recordName(place.type), place.type, at, limit - at);
        addError(list, at, "the record's length is cut off: the content ends at %zu", limit);
        return false;
    }
    std::size_t length = 0;
    for (unsigned i = lengthBytes; i > 0; --i) length = length << 8 | list.content[at + i];
    place.body = at + 1 + lengthBytes;
    place.end = place.body + length;
    return true;
}

void noteDefinition(Listing& list, MovieFacts& facts, std::uint16_t id, const RecordPlace& record) {
    if (id == noCharacter) {
        addWarning(list, record.body, "identifier 65535 means none: the definition is not registered");
        return;
    }
    facts.definitions.push_back({static_cast<std::uint32_t>(record.offset),
                                 static_cast<std::uint32_t>(record.end - record.offset), id, definedKind(record.type)});
    MovieFacts::Identifier& identifier = identifierFacts(facts, id);
    if (identifier.definedBy != 0) {
        addWarning(list, record.offset, "character %u is defined already, at %u: the first definition counts",
                   unsigned{id}, list.out.parts[identifier.definedBy - 1].offset);
        return;
    }
    identifier.definedBy = static_cast<std::uint32_t>(list.out.parts.size());
}

void noteReference(Listing& list, MovieFacts& facts, std::uint16_t id, std::size_t offset) {
    if (id == noCharacter) return;
    MovieFacts::Identifier& identifier = identifierFacts(facts, id);
    if (identifier.namedBy != 0) return;
    identifier.namedBy = static_cast<std::uint32_t>(list.out.parts.size());
    identifier.namedAt = static_cast<std::uint32_t>(offset);
}

void inspectMovie(Listing& list, MovieSource source) {
    if (list.content.size() < vis::headerSize) {
        PartScope scope(list, "header", -1, 0, list.content.size());
        addError(list, list.content.size(), "the header is cut off: %zu of %u bytes", list.content.size(),
                 unsigned{vis::headerSize});
        return;
    }
    MovieFacts facts;
    const MovieHeader header = inspectHeader(list, facts);
    if (header.version < vis::firstRecordVersion) {
        addError(list, vis::versionOffset,
                 "version %u belongs to the frame decoder, which takes over at offset %u and looks for \"SAF\" content",
                 header.version, unsigned{vis::legacyOffset});
        return;
    }
    facts.recordsEnd = list.content.size();
    if (source == MovieSource::file) facts.recordsEnd = std::min<std::size_t>(facts.recordsEnd, facts.contentLength);
    inspectRecords(list, facts);
    if (facts.contentLength > list.content.size()) {
        addProblemOf(list, facts.headerPart, Severity::error, list.content.size(),
                     "the content has %u bytes, the file ends after %zu", facts.contentLength, list.content.size());
    } else if (facts.contentLength < vis::headerSize) {
        addProblemOf(list, facts.headerPart, Severity::error, vis::contentLengthOffset,
                     "a content of %u bytes has no room for its header", facts.contentLength);
    }
    if (list.full) return;
    if (facts.framesMet != facts.frameCount) {
        addProblemOf(list, facts.headerPart, Severity::warning, vis::frameCountOffset,
                     "%u frames are announced, %u are there", facts.frameCount, facts.framesMet);
    }
    inspectBehindContent(list, facts, header);
    checkReferences(list, facts);
    checkDirectory(list, facts);
}

}  // namespace qel::author::inspector
