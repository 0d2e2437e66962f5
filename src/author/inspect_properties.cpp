// The records that loading reads before any other: movie properties, character directory, name table, block table.
#include <algorithm>

#include "author/inspect_fields.h"
#include "author/inspect_movie.h"
#include "author/inspect_names.h"

namespace qel::author::inspector {
namespace {

void inspectKeyFrameIndex(Listing& list, MovieFacts& facts, std::size_t begin, std::size_t end) {
    FieldReader fields(list, begin, end);
    const unsigned count = fields.u16("count");
    int before = -1;
    for (unsigned i = 0; i < count && !list.full; ++i) {
        if (fields.left() < 4) {
            if (!fields.broken()) addError(list, fields.at(), "entry %u of %u is cut off", i, count);
            return;
        }
        PartScope scope(list, "keyFrame", -1, fields.at(), 4);
        const int frame = fields.u16("frame");
        const std::size_t at = fields.at();
        noteReference(list, facts, fields.u16("identifier"), at);
        if (frame <= before)
            addWarning(list, at, "frame %d stands after frame %d: the search needs ascending order", frame, before);
        before = frame;
    }
}

// The durations of all frames but the last, which has none, when the movie has no common one.
void inspectFrameDuration(Listing& list, const MovieFacts& facts, FieldReader& fields) {
    const unsigned common = fields.u16("frameDuration");
    if (common != 0 || fields.broken()) return;
    std::vector<std::int32_t> durations;
    while (durations.size() + 1 < facts.frameCount && fields.left() >= 2) durations.push_back(fields.u16(nullptr));
    addNumbers(list, "durations", durations);
    if (durations.size() + 1 < facts.frameCount) {
        addWarning(list, fields.at(), "%zu of %u durations are there; the missing ones are 0", durations.size(),
                   facts.frameCount - 1);
    }
}

void inspectProperty(Listing& list, MovieFacts& facts, PropertyType type, std::size_t begin, std::size_t end) {
    FieldReader fields(list, begin, end);
    switch (type) {
        case PropertyType::commands: inspectCommandList(list, facts, begin, end); break;
        case PropertyType::keyFrameIndex: inspectKeyFrameIndex(list, facts, begin, end); break;
        case PropertyType::frameLabels: {
            const unsigned count = fields.u16("count");
            inspectNamedNumbers(list, {"label", "frame", "label"}, count, fields.at(), end, &facts.labels);
            break;
        }
        case PropertyType::frameCount: facts.frameCount = fields.u16("frameCount"); break;
        case PropertyType::background: {
            fields.align();
            const std::uint32_t format = fields.bits(4, nullptr);
            if (!fields.broken()) addWord(list, "format", colourFormatName(static_cast<std::uint8_t>(format)));
            fields.colour(format, "colour");
            break;
        }
        case PropertyType::frameDuration: inspectFrameDuration(list, facts, fields); break;
        case PropertyType::contentLength: {
            const std::uint32_t length = fields.u32("contentLength");
            if (fields.broken()) break;
            if (length != facts.contentLength) {
                addWarning(list, begin,
                           "the header says %u: that bounds the records, this tells where trailer blocks begin",
                           facts.contentLength);
            }
            facts.contentLength = length;
            break;
        }
        case PropertyType::stageRectangle: fields.rectangle("rectangle"); break;
        case PropertyType::dictionarySize: {
            const std::uint32_t size = fields.u16("dictionarySize");
            if (fields.broken() || facts.hasDictionary) break;  // a directory has settled it
            facts.dictionarySize = size;
            facts.hasDictionary = true;
            break;
        }
        case PropertyType::reserved52:
        case PropertyType::reserved56:
        case PropertyType::blob:
        case PropertyType::reserved65: break;
    }
}

// Entries of the directory and the block table: a length of its own width when the first bit says so.
struct PackedWidths {
    unsigned offsetBits = 0, lengthBits = 0;
};

PackedWidths readWidths(FieldReader& fields) {
    fields.align();
    PackedWidths widths;
    widths.offsetBits = fields.bits(5, "offsetBits");
    widths.lengthBits = fields.bits(5, "defaultLengthBits");
    return widths;
}

}  // namespace

void inspectMovieProperties(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    std::size_t at = record.body;
    while (at < record.end && !list.full) {
        const std::uint8_t type = list.content[at];
        const unsigned lengthBytes = propertyLengthBytes(type);
        const std::size_t body = at + 1 + lengthBytes;
        std::size_t length = 0;
        for (std::size_t i = body; i-- > at + 1 && body <= record.end;) length = length << 8 | list.content[i];
        PartScope scope(list, propertyName(type), type, at, std::min(body + length, record.end) - at);
        if (body > record.end) {
            addError(list, at, "the sub-record's length is cut off: the record ends at %zu", record.end);
            return;
        }
        if (length > record.end - body) {
            addError(list, at, "the sub-record of %zu bytes runs past the end of its record at %zu", length,
                     record.end);
            return;
        }
        inspectProperty(list, facts, PropertyType{type}, body, body + length);
        at = body + length;
    }
}

void inspectCharacterDirectory(Listing& list, MovieFacts& facts, const RecordPlace& record) {
    FieldReader fields(list, record.body, record.end);
    const unsigned count = fields.u16("count");
    const PackedWidths widths = readWidths(fields);
    if (fields.broken()) return;
    facts.dictionarySize = count;
    facts.hasDictionary = true;
    for (unsigned id = 0; id < count && !list.full; ++id) {
        const std::size_t at = fields.at();
        const bool wide = fields.flag(nullptr);
        const unsigned lengthBits = wide ? fields.bits(5, nullptr) : widths.lengthBits;
        const auto kind = static_cast<std::uint8_t>(fields.bits(5, nullptr));
        const std::uint32_t offset = fields.bits(widths.offsetBits, nullptr);
        const std::uint32_t length = fields.bits(lengthBits, nullptr);
        if (fields.broken()) return;
        if (length == 0) continue;  // an identifier that is not in use
        PartScope scope(list, "directoryEntry", -1, at, std::max<std::size_t>(fields.at() - at, 1));
        addNumber(list, "identifier", id);
        addWord(list, "kind", characterKindName(kind));
        addNumber(list, "recordOffset", offset);
        addNumber(list, "recordLength", length);
        facts.directory.push_back({scope.index(), offset, length, static_cast<std::uint16_t>(id), kind});
    }
}

void inspectNamedNumbers(Listing& list, const EntryNames& names, unsigned count, std::size_t begin, std::size_t end,
                         std::map<std::uint32_t, std::string>* collected) {
    FieldReader fields(list, begin, end);
    for (unsigned i = 0; i < count && !fields.broken() && !list.full; ++i) {
        const std::size_t at = fields.at();
        const std::size_t length = fields.left() < 3 ? fields.left() : 3 + std::size_t{list.content[at + 2]};
        PartScope scope(list, names.entry, -1, at, std::min(length, fields.left()));
        const std::uint16_t number = fields.u16(names.number);
        const std::string_view text = fields.shortText(names.text);
        if (collected && !fields.broken()) collected->emplace(number, text);
    }
}

void inspectNameTable(Listing& list, const RecordPlace& record) {
    FieldReader fields(list, record.body, record.end);
    const unsigned count = fields.u16("count");
    inspectNamedNumbers(list, {"characterName", "character", "name"}, count, fields.at(), record.end);
}

void inspectBlockTable(Listing& list, const RecordPlace& record) {
    FieldReader fields(list, record.body, record.end);
    const unsigned count = fields.u16("count");
    const PackedWidths widths = readWidths(fields);
    for (unsigned i = 0; i < count && !fields.broken() && !list.full; ++i) {
        const std::size_t at = fields.at();
        const bool wide = fields.flag(nullptr);
        const unsigned lengthBits = wide ? fields.bits(5, nullptr) : widths.lengthBits;
        const std::uint32_t id = fields.bits(16, nullptr);
        const std::uint32_t offset = fields.bits(widths.offsetBits, nullptr);
        const std::uint32_t length = fields.bits(lengthBits, nullptr);
        if (fields.broken()) return;
        PartScope scope(list, "block", -1, at, fields.at() - at);
        addNumber(list, "identifier", id);
        addNumber(list, "blockOffset", offset);
        addNumber(list, "blockLength", length);
        if (std::uint64_t{offset} + length > list.content.size()) {
            addError(list, at, "the block of %u bytes at %u runs past the end of the file", length, offset);
        }
    }
}

}  // namespace qel::author::inspector
