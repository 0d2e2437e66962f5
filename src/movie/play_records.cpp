#include "movie/play_records.h"

#include <algorithm>
#include <limits>

#include "movie/gotos.h"
#include "movie/movie.h"
#include "movie/record_header.h"
#include "movie/section.h"
#include "movie/structures.h"
#include "movie/timeline.h"

namespace qel {
namespace {

// How reading goes on behind a record.
enum class Next { record, status };

// The frame has been played, or the clips of a stopped timeline stepped: its actions are next.
Result goOnWithActions(Movie& movie, Result played) {
    if (failed(played)) return played;
    movie.state.phase = Phase::frameActions;
    answer(movie, LoadCode::again);
    return Result::done;
}

Result readKeyFrameList(Movie& movie, ContentReader body) {
    const std::uint32_t count = body.u16();
    body.align();
    const unsigned bits = body.ub(4) + 1;
    if (std::uint64_t{count} * bits > std::uint64_t{body.left()} * 8 + 8) return Result::badContent;
    if (failed(movie.keyFrames.assignZeros(movie.pool, count))) return Result::outOfMemory;
    for (std::uint16_t& frame : movie.keyFrames) frame = static_cast<std::uint16_t>(body.ub(bits));
    return body.ok() ? Result::done : Result::badContent;
}

Result readPurgeOrder(Movie& movie, ContentReader body) {
    const std::uint32_t count = body.u8();
    if (!body.available(count * 2)) return Result::badContent;
    PoolArray<std::uint16_t> order;  // the old one holds until the new one has its room
    if (failed(order.assignZeros(movie.pool, count))) return Result::outOfMemory;
    for (std::uint16_t& id : order) id = body.u16();
    movie.dictionary.purgeOrder = std::move(order);
    return Result::done;
}

// Records that act at once.
Result actOn(Movie& movie, RecordType type, ContentReader body) {
    switch (type) {
        case RecordType::keyFrameList: return readKeyFrameList(movie, body);
        case RecordType::purgeOrder: return readPurgeOrder(movie, body);
        case RecordType::backgroundColour:
            movie.header.backgroundColour = readPackedColour(body, movie.header.backgroundColour);
            movie.fullRedraw = true;
            return body.ok() ? Result::done : Result::badContent;
        case RecordType::releaseCharacters:
            while (body.available(2)) freeCharacter(movie.dictionary, body.u16());
            return Result::done;
        default: return Result::nothing;
    }
}

constexpr bool actsAtOnce(std::uint8_t type) {
    switch (RecordType{type}) {
        case RecordType::keyFrameList:
        case RecordType::purgeOrder:
        case RecordType::backgroundColour:
        case RecordType::releaseCharacters: return true;
        default: return false;
    }
}

Result actOnBody(Movie& movie, std::uint8_t type, ContentReader body, std::uint32_t bodyOffset) {
    if (RecordType{type} == RecordType::frame)
        return goOnWithActions(movie, playRootFrame(movie, {.body = body, .bodyOffset = bodyOffset}));
    answer(movie, LoadCode::again);
    return actOn(movie, RecordType{type}, body);
}

// A record larger than a chunk is collected from as many as it takes.
Result collectRecord(Movie& movie) {
    const Result collected = collectSection(movie);
    if (collected != Result::done) return collected;
    const PoolArray<std::uint8_t> body = takeSection(movie);
    return actOnBody(movie, movie.sectionType, ContentReader(body.span()), movie.sectionOffset);
}

// A record whose whole body is needed.
Result takeWhole(Movie& movie, const RecordHeader& header, Next& next) {
    ContentReader ahead = movie.reader;
    ahead.skip(header.headerLength);
    const std::uint32_t bodyOffset = readerOffset(movie) + header.headerLength;
    if (ahead.available(header.bodyLength)) {
        const ContentReader body = ahead.section(header.bodyLength);
        movie.reader = ahead;
        next = RecordType{header.type} == RecordType::frame ? Next::status : Next::record;
        return actOnBody(movie, header.type, body, bodyOffset);
    }
    const bool fillsChunk = movie.reader.cursor() == 0 && movie.reader.left() == PlayerInstance::chunkSize;
    if (!fillsChunk) {
        askForBytes(movie, readerOffset(movie));
        return Result::done;
    }
    movie.reader = ahead;
    movie.sectionType = header.type;
    if (failed(beginSection(movie, header.bodyLength))) return Result::outOfMemory;
    return collectRecord(movie);
}

// Moves behind a record, whether its end was fed or not.
Result skipRecord(Movie& movie, const RecordHeader& header, Next& next) {
    const std::uint64_t end = readerOffset(movie) + header.length();
    if (end > std::numeric_limits<std::uint32_t>::max()) return Result::badContent;
    if (movie.reader.available(header.length())) {
        movie.reader.skip(header.length());
        return Result::done;
    }
    movie.reader = ContentReader();
    movie.position = static_cast<std::uint32_t>(end);
    askForBytes(movie, movie.position);
    next = Next::status;
    return Result::done;
}

constexpr bool isDefinition(std::uint8_t type) {
    return RecordType{type} != RecordType::frame && definedKind(type) != CharacterKind::none;
}

// A definition that the dictionary has already, or has no place for, is passed over; another is decoded.
Result takeOrSkipDefinition(Movie& movie, const ScannedRecord& record, Next& next) {
    const bool fits = record.header.length() <= std::numeric_limits<std::uint32_t>::max();
    if (!fits || !awaitsDecoding(movie.dictionary, record.id, readerOffset(movie)))
        return skipRecord(movie, record.header, next);
    registerCharacter(movie.dictionary, record.id, definedKind(record.header.type), readerOffset(movie),
                      static_cast<std::uint32_t>(record.header.length()));
    const Result taken = takeDefinition(movie, record);
    next = taken == Result::done ? Next::record : Next::status;
    return taken;
}

// One record.
Result takeRecord(Movie& movie, Next& next) {
    ScannedRecord scanned;
    next = Next::status;
    if (movie.reader.available(1) && ContentReader(movie.reader).u8() == static_cast<std::uint8_t>(RecordType::end)) {
        movie.state.phase = Phase::finish;
        answer(movie, LoadCode::again);
        return Result::done;
    }
    if (!scanRecord(movie.reader, scanned)) {
        askForBytes(movie, readerOffset(movie));
        return Result::done;
    }
    const RecordHeader& header = scanned.header;
    if (RecordType{header.type} == RecordType::frame || actsAtOnce(header.type)) return takeWhole(movie, header, next);
    next = Next::record;
    return isDefinition(header.type) ? takeOrSkipDefinition(movie, scanned, next) : skipRecord(movie, header, next);
}

Result readOn(Movie& movie) {
    if (isCollecting(movie)) return collectRecord(movie);
    if (isArriving(movie.streamed)) {
        const Result taken = continueStreamed(movie);
        if (taken != Result::done) return taken;
    }
    for (;;) {
        Next next = Next::status;
        const Result taken = takeRecord(movie, next);
        if (failed(taken) || next == Next::status) return taken;
    }
}

}  // namespace

Result playRecords(Movie& movie) {
    switch (static_cast<PlayStep>(movie.state.step)) {
        case PlayStep::nextFrame: break;
        case PlayStep::cachedFrame: return goOnWithActions(movie, playGotoFrame(movie));
        case PlayStep::stoppedRoot: movie.workLeft = workPerCycle; return goOnWithActions(movie, stepClips(movie));
    }
    return readOn(movie);
}

}  // namespace qel
