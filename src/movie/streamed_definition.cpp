#include "movie/streamed_definition.h"

#include <algorithm>

#include "movie/movie.h"
#include "movie/section.h"

namespace qel {
namespace {

// Sprites and bitmaps must not be broken; whatever else is gets another chance where it is used.
constexpr bool mustBeWhole(std::uint8_t type) {
    switch (RecordType{type}) {
        case RecordType::sprite:
        case RecordType::bitmap:
        case RecordType::alphaBitmap: return true;
        default: return false;
    }
}

// What a failure of a definer means for playback.
Result giveUp(StreamedDefinition& streamed, Result failure) {
    streamed.definition.character.reset();
    const bool survivable = failure == Result::brokenDefinition && !mustBeWhole(streamed.definition.type);
    return survivable ? Result::done : failure;
}

// The count that an object begins with when nobody has looked it up yet.
void beginUses(Character& character) {
    const bool counted = countsUses(character.kind) && character.kind != CharacterKind::sound;
    character.useCount = counted ? 1 : 0;
}

Result finish(Movie& movie, StreamedDefinition& streamed) {
    Definition& definition = streamed.definition;
    if (!definition.character) return Result::done;
    ++movie.dictionary.decoding;
    const Result finished = finishDefinition(movie.dictionary, definition);
    --movie.dictionary.decoding;
    if (failed(finished)) return giveUp(streamed, finished);
    beginUses(*definition.character);
    setCharacter(movie.dictionary, definition.id, streamed.offset, streamed.length, std::move(definition.character));
    return Result::done;
}

// The bytes of the body that were fed.
ContentReader bodyPiece(const Movie& movie, std::uint32_t left) {
    const std::span<const std::uint8_t> rest = movie.reader.rest();
    return ContentReader(rest.first(std::min<std::size_t>(rest.size(), left)));
}

void moveBehind(Movie& movie, const ContentReader& piece) {
    movie.reader.skip(piece.cursor());
    movie.streamed.left -= static_cast<std::uint32_t>(piece.cursor());
}

// Moves behind the body; false: its rest was not fed, and is asked for.
bool skipRest(Movie& movie) {
    const std::size_t skipped = std::min<std::size_t>(movie.reader.left(), movie.streamed.left);
    movie.reader.skip(skipped);
    movie.streamed.left -= static_cast<std::uint32_t>(skipped);
    if (movie.streamed.left == 0) return true;
    askForBytes(movie, readerOffset(movie));
    return false;
}

// Whether the reader begins with a whole chunk: asking again would bring no more of the record.
bool fillsChunk(const Movie& movie) {
    return movie.reader.cursor() == 0 && movie.reader.left() == PlayerInstance::chunkSize;
}

}  // namespace

Result takeDefinition(Movie& movie, const ScannedRecord& record) {
    StreamedDefinition& streamed = movie.streamed;
    const ContentReader start = movie.reader;
    streamed.offset = readerOffset(movie);
    streamed.length = static_cast<std::uint32_t>(record.header.length());
    streamed.left = record.header.bodyLength;
    movie.reader.skip(record.header.headerLength);
    ContentReader piece = bodyPiece(movie, streamed.left);
    const bool whole = piece.left() == streamed.left;
    const Result begun =
        beginDefinition(streamed.definition, record, streamed.offset + record.header.headerLength, piece, movie.pool);
    if (begun == Result::brokenDefinition && !whole && !fillsChunk(movie) && start.cursor() != 0) {
        // The head may go on behind the fed bytes: the same record once more.
        streamed = {};
        movie.reader = start;
        askForBytes(movie, readerOffset(movie));
        return Result::nothing;
    }
    if (failed(begun)) {
        const Result left = giveUp(streamed, begun);
        if (failed(left)) return left;
    }
    moveBehind(movie, piece);
    if (begun != Result::done) streamed.definition.character.reset();
    return continueStreamed(movie);
}

Result continueStreamed(Movie& movie) {
    StreamedDefinition& streamed = movie.streamed;
    if (streamed.definition.character) {
        ContentReader piece = bodyPiece(movie, streamed.left);
        Result taken = continueDefinition(streamed.definition, piece, movie.pool);
        moveBehind(movie, piece);
        if (taken == Result::nothing && streamed.left == 0) taken = Result::brokenDefinition;
        if (taken == Result::nothing) {
            askForBytes(movie, readerOffset(movie));
            return Result::nothing;
        }
        const Result over = failed(taken) ? giveUp(streamed, taken) : finish(movie, streamed);
        if (failed(over)) return over;
    }
    return skipRest(movie) ? Result::done : Result::nothing;
}

}  // namespace qel
