#include "movie/leading_records.h"

#include <algorithm>

#include "movie/movie.h"
#include "movie/structures.h"

namespace qel {
namespace {

Result checked(const ContentReader& reader) { return reader.ok() ? Result::done : Result::badContent; }

// Whether `count` entries of at least `bytes` can lie in what is left: a count is believed no further than its bytes
// go.
bool canHold(const ContentReader& reader, std::uint32_t count, std::uint32_t bytes) {
    return std::uint64_t{count} * bytes <= reader.left();
}

// The widths that a table's entries share, and how wide an entry's own length is.
struct TableWidths {
    unsigned offsetBits = 0, defaultLengthBits = 0;
};

TableWidths readWidths(ContentReader& body) {
    body.align();
    const unsigned offsetBits = body.ub(5);
    const unsigned defaultLengthBits = body.ub(5);
    return {offsetBits, defaultLengthBits};
}

unsigned readLengthBits(ContentReader& body, const TableWidths& widths) {
    return body.ub(1) != 0 ? body.ub(5) : widths.defaultLengthBits;
}

Result readKeyFrameIndex(ContentReader body, Pool& pool, ScriptContext& scripts) {
    constexpr std::uint32_t entryBytes = 4;
    const std::uint32_t count = body.u16();
    if (!canHold(body, count, entryBytes)) return Result::badContent;
    if (failed(scripts.keyFrames.assignZeros(pool, count))) return Result::outOfMemory;
    for (KeyFrameEntry& entry : scripts.keyFrames) {
        entry.frame = body.u16();
        entry.cacheId = body.u16();
    }
    return checked(body);
}

Result readLabels(ContentReader body, Pool& pool, ScriptContext& scripts) {
    constexpr std::uint32_t leastEntryBytes = 3;
    const std::uint32_t count = body.u16();
    if (!canHold(body, count, leastEntryBytes)) return Result::badContent;
    if (failed(scripts.labels.assignZeros(pool, count))) return Result::outOfMemory;
    for (LabelEntry& entry : scripts.labels) {
        entry.frame = body.u16();
        if (failed(copyText(pool, body.shortText(), entry.label))) return Result::outOfMemory;
    }
    return checked(body);
}

// One duration for all frames, or, behind a 0, one for each frame but the last, whose duration is 0. Durations that the
// record leaves out are 0 too.
Result readDurations(ContentReader body, Pool& pool, MovieHeader& header) {
    header.frameDuration = body.u16();
    if (!body.ok()) return Result::badContent;
    if (header.frameDuration != 0) return Result::done;
    if (failed(header.frameDurations.assignZeros(pool, header.frameCount))) return Result::outOfMemory;
    for (std::uint32_t i = 0; i + 1 < header.frameDurations.size() && body.available(2); ++i)
        header.frameDurations[i] = body.u16();
    return Result::done;
}

Result readProperty(Movie& movie, PropertyType type, ContentReader body) {
    MovieHeader& header = movie.header;
    switch (type) {
        case PropertyType::commands: return readCommands(body, movie.heap, movie.globalCommands);
        case PropertyType::keyFrameIndex: return readKeyFrameIndex(body, movie.pool, movie.scripts);
        case PropertyType::frameLabels: return readLabels(body, movie.pool, movie.scripts);
        case PropertyType::reserved52:
            body.ub(3);
            if (failed(header.reserved52.assign(movie.pool, body.take(body.u16())))) return Result::outOfMemory;
            break;
        case PropertyType::frameCount: header.frameCount = body.u16(); break;
        case PropertyType::background:
            header.hasBackground = true;
            header.initialBackground = readPackedColour(body, header.initialBackground);
            break;
        case PropertyType::frameDuration: return readDurations(body, movie.pool, header);
        case PropertyType::contentLength: header.contentLength = body.u32(); break;
        case PropertyType::blob: return header.blob.assign(movie.pool, body.rest());
        case PropertyType::stageRectangle: header.stage = readRect(body); break;
        case PropertyType::dictionarySize: header.dictionarySize = body.u16(); break;
        case PropertyType::reserved56:
        case PropertyType::reserved65: return Result::done;  // nobody uses them
        default: return Result::done;
    }
    return checked(body);
}

}  // namespace

void readMovieHeader(ContentReader header, MovieHeader& fields) {
    header.seek(vis::flagsOffset);
    const std::uint8_t flags = header.u8();
    fields.version = header.u8();
    header.seek(vis::extensionOffset);
    fields.hasExtension = (header.u8() & vis::hasExtension) != 0;
    header.seek(vis::contentLengthOffset);
    fields.contentLength = header.u32();
    fields.frameCount = header.u16();
    const std::uint16_t width = header.u16();
    const std::uint16_t height = header.u16();
    fields.stage = {0, 0, static_cast<std::int16_t>(width), static_cast<std::int16_t>(height)};
    fields.scanDefinitions = (flags & vis::scanDefinitions) != 0;
    fields.dropFrames = (flags & vis::dropFrames) != 0;
    fields.fitToScreen = (flags & vis::fitToScreen) != 0 || fields.version < vis::firstFitVersion;
    fields.fontMode = static_cast<FontMode>((flags & vis::fontModeMask) >> vis::fontModeShift);
    fields.trailer = (flags & vis::trailer) != 0;
}

Result readCharacterDirectory(ContentReader body, CharacterDictionary& dictionary) {
    const std::uint16_t count = body.u16();
    const TableWidths widths = readWidths(body);
    constexpr unsigned leastEntryBits = 6;
    const std::uint64_t leastBits = std::uint64_t{count} * (leastEntryBits + widths.offsetBits);
    if (!body.ok() || leastBits > std::uint64_t{body.left() + 1} * 8) return Result::badContent;
    if (failed(sizeDictionary(dictionary, count))) return Result::outOfMemory;
    for (std::uint32_t id = 0; id < count && body.ok(); ++id) {
        const unsigned lengthBits = readLengthBits(body, widths);
        const auto kind = static_cast<CharacterKind>(body.ub(5));
        const std::uint32_t offset = body.ub(widths.offsetBits);
        const std::uint32_t length = body.ub(lengthBits);
        registerCharacter(dictionary, static_cast<std::uint16_t>(id), kind, offset, length);
    }
    return checked(body);
}

Result readNameTable(ContentReader body, Pool& pool, ScriptContext& scripts) {
    constexpr std::uint32_t leastEntryBytes = 3;
    const std::uint32_t count = body.u16();
    if (!canHold(body, count, leastEntryBytes)) return Result::badContent;
    if (failed(scripts.names.assignZeros(pool, count))) return Result::outOfMemory;
    for (NameEntry& entry : scripts.names) {
        entry.id = body.u16();
        if (failed(copyText(pool, body.shortText(), entry.name))) return Result::outOfMemory;
    }
    return checked(body);
}

Result readBlockTable(ContentReader body, Pool& pool, ScriptContext& scripts) {
    constexpr std::uint32_t leastEntryBytes = 2;
    const std::uint32_t count = body.u16();
    const TableWidths widths = readWidths(body);
    if (!canHold(body, count, leastEntryBytes)) return Result::badContent;
    if (failed(scripts.blocks.assignZeros(pool, count))) return Result::outOfMemory;
    std::uint32_t longest = 0;
    for (BlockEntry& entry : scripts.blocks) {
        const unsigned lengthBits = readLengthBits(body, widths);
        entry.id = static_cast<std::uint16_t>(body.ub(16));
        entry.offset = body.ub(widths.offsetBits);
        entry.length = body.ub(lengthBits);
        longest = std::max(longest, entry.length);
    }
    if (!body.ok()) return Result::badContent;
    return scripts.blockBuffer.assignZeros(pool, longest);
}

Result readMovieProperties(Movie& movie, ContentReader body) {
    while (body.available(1)) {
        const std::uint8_t type = body.u8();
        const std::uint32_t length = body.littleEndian(propertyLengthBytes(type));
        if (!body.ok() || !body.available(length)) return Result::badContent;
        const Result read = readProperty(movie, PropertyType{type}, body.section(length));
        if (failed(read)) return read;
    }
    return Result::done;
}

}  // namespace qel
