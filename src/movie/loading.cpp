#include "movie/loading.h"

#include <algorithm>
#include <limits>

#include "movie/definition_scan.h"
#include "movie/expansion.h"
#include "movie/leading_records.h"
#include "movie/movie.h"
#include "movie/record_header.h"
#include "movie/section.h"
#include "movie/start_of_play.h"
#include "player/engine_services.h"

namespace qel {
namespace {

// The record at the reader's cursor must lie whole within the fed bytes. `nothing`: more bytes were asked for, from the
// record's start. A record that does not fit a whole chunk from its start cannot be had.
Result wholeRecord(Movie& movie, RecordHeader& header) {
    ContentReader ahead = movie.reader;
    if (readRecordHeader(ahead, header) && ahead.available(header.bodyLength)) return Result::done;
    if (movie.reader.cursor() == 0 && movie.reader.left() == PlayerInstance::chunkSize) return Result::badContent;
    askForBytes(movie, readerOffset(movie));
    return Result::nothing;
}

// Which leading record may follow which.
bool mayFollow(std::uint8_t previous, std::uint8_t next) {
    switch (RecordType{next}) {
        case RecordType::movieProperties: return true;
        case RecordType::characterDirectory: return previous == 0;
        case RecordType::nameTable: return previous != static_cast<std::uint8_t>(RecordType::nameTable);
        case RecordType::blockTable:
            return previous == 0 || previous == static_cast<std::uint8_t>(RecordType::characterDirectory);
        default: return false;
    }
}

LoadStep stepOf(std::uint8_t type) {
    switch (RecordType{type}) {
        case RecordType::characterDirectory: return LoadStep::directory;
        case RecordType::nameTable: return LoadStep::nameTable;
        case RecordType::blockTable: return LoadStep::blockTable;
        default: return LoadStep::properties;
    }
}

// Goes to the step of the record at the reader's cursor, which follows one of type `previous` (0: the file header).
Result enterNextRecord(Movie& movie, std::uint8_t previous) {
    movie.awaitsRecord = !movie.reader.available(1);
    movie.previousRecord = previous;
    if (movie.awaitsRecord) {
        askForBytes(movie, readerOffset(movie));
        return Result::done;
    }
    const std::uint8_t type = ContentReader(movie.reader).u8();
    if (!mayFollow(previous, type)) return Result::badContent;
    movie.state.enter(Phase::load, stepOf(type));
    answer(movie, LoadCode::again);
    return Result::done;
}

Result readHeader(Movie& movie) {
    if (!movie.reader.available(vis::headerSize)) {
        askForBytes(movie, 0);
        return Result::done;
    }
    const ContentFamily family = contentFamily(movie.reader.rest());
    if (family != ContentFamily::vis && family != ContentFamily::saf) return Result::badContent;
    ContentReader header = movie.reader.section(vis::headerSize);
    readMovieHeader(header, movie.header);
    const bool old = movie.header.version < vis::firstRecordVersion;
    if (family == ContentFamily::saf && !old) return Result::badContent;
    if (old) {
        movie.state.enter(Phase::legacy, std::uint8_t{1});
        askForBytes(movie, vis::legacyOffset);
        return Result::done;
    }
    return enterNextRecord(movie, 0);
}

Result parseDirectory(Movie& movie, ContentReader body) {
    const Result read = readCharacterDirectory(body, movie.dictionary);
    return failed(read) ? read : enterNextRecord(movie, static_cast<std::uint8_t>(RecordType::characterDirectory));
}

Result readDirectory(Movie& movie) {
    if (!isCollecting(movie)) {
        RecordHeader header;
        if (!readRecordHeader(movie.reader, header)) {
            askForBytes(movie, readerOffset(movie));
            return Result::done;
        }
        if (movie.reader.available(header.bodyLength))
            return parseDirectory(movie, movie.reader.section(header.bodyLength));
        if (failed(beginSection(movie, header.bodyLength))) return Result::outOfMemory;
    }
    const Result collected = collectSection(movie);
    if (collected != Result::done) return collected;
    const PoolArray<std::uint8_t> body = takeSection(movie);
    return parseDirectory(movie, ContentReader(body.span()));
}

// A record that is parsed in place, then the next one.
template <class Read>
Result readInPlace(Movie& movie, Read read) {
    RecordHeader header;
    const Result whole = wholeRecord(movie, header);
    if (whole != Result::done) return whole;
    movie.reader.skip(header.headerLength);
    const Result result = read(movie.reader.section(header.bodyLength));
    return failed(result) ? result : enterNextRecord(movie, header.type);
}

Result readProperties(Movie& movie) {
    RecordHeader header;
    const Result whole = wholeRecord(movie, header);
    if (whole != Result::done) return whole;
    movie.reader.skip(header.headerLength);
    const Result result = readMovieProperties(movie, movie.reader.section(header.bodyLength));
    if (failed(result)) return result;
    if (failed(sizeDictionary(movie.dictionary, movie.header.dictionarySize))) return Result::outOfMemory;
    movie.firstFramePosition = readerOffset(movie);
    movie.state.enter(Phase::load, LoadStep::definitions);
    return movie.header.scanDefinitions ? scanDefinition(movie) : requestFrameBuffer(movie);
}

}  // namespace

Result sniffContent(Movie& movie) {
    switch (static_cast<SniffStep>(movie.state.step)) {
        case SniffStep::request:
            movie.state.enter(Phase::sniff, SniffStep::recognise);
            askForBytes(movie, 0);
            return Result::done;
        case SniffStep::recognise: break;
        case SniffStep::expandChunk: return expandChunk(movie);
        case SniffStep::finishChunk: return finishChunk(movie);
    }
    switch (contentFamily(movie.reader.rest())) {
        case ContentFamily::zvis: return beginExpansion(movie);
        case ContentFamily::vis:
        case ContentFamily::saf: break;
        case ContentFamily::stream:
        case ContentFamily::unknown: return Result::badContent;
    }
    movie.state.enter(Phase::load, LoadStep::header);
    answer(movie, LoadCode::again);
    return Result::done;
}

Result reopenContent(Movie& movie) {
    movie.state.enter(Phase::load, LoadStep::header);
    askForBytes(movie, 0);
    return Result::done;
}

Result loadMovie(Movie& movie) {
    services(*movie.player).queryHostInformation(*movie.player->host);
    if (movie.awaitsRecord) return enterNextRecord(movie, movie.previousRecord);
    switch (static_cast<LoadStep>(movie.state.step)) {
        case LoadStep::header: return readHeader(movie);
        case LoadStep::directory: return readDirectory(movie);
        case LoadStep::nameTable:
            return readInPlace(movie,
                               [&](ContentReader body) { return readNameTable(body, movie.pool, movie.scripts); });
        case LoadStep::blockTable:
            return readInPlace(movie,
                               [&](ContentReader body) { return readBlockTable(body, movie.pool, movie.scripts); });
        case LoadStep::properties: return readProperties(movie);
        case LoadStep::definitions: return scanDefinition(movie);
        case LoadStep::frameBuffer:
            movie.information.reset();
            movie.state.enter(Phase::load, LoadStep::startOfPlay);
            return startPlay(movie);
        case LoadStep::startOfPlay: return startPlay(movie);
        case LoadStep::rewind: return rewindMovie(movie);
    }
    return Result::badContent;
}

}  // namespace qel
