#include "movie/expansion.h"

#include "movie/movie.h"
#include "movie/section.h"
#include "player/engine_services.h"

namespace qel {
namespace {

std::uint32_t dueLength(const Expansion& expansion) {
    const bool last = expansion.chunk + 1 == expansion.chunkSizes.size();
    return last ? expansion.expandedLength - expansion.chunk * zvis::chunkSize : zvis::chunkSize;
}

// The chunks must add up to the announced length: all but the last are full, and the last is not empty.
bool agrees(std::uint32_t expandedLength, std::uint32_t chunkCount) {
    if (chunkCount == 0) return false;
    const std::uint32_t beforeLast = (chunkCount - 1) * zvis::chunkSize;
    return expandedLength > beforeLast && expandedLength - beforeLast <= zvis::chunkSize;
}

Result copyTables(Expansion& expansion, ContentReader reader, std::uint32_t tableLength, std::uint32_t chunkCount,
                  Pool& pool) {
    if (failed(expansion.codeTables.assign(pool, reader.take(tableLength)))) return Result::outOfMemory;
    if (failed(expansion.chunkSizes.assignZeros(pool, chunkCount))) return Result::outOfMemory;
    for (std::uint16_t& size : expansion.chunkSizes) size = reader.u16();
    return reader.ok() ? Result::done : Result::badContent;
}

// Expands compressed bytes behind what the chunk has produced so far.
InflateProgress expandPart(Movie& movie, std::span<const std::uint8_t> compressed) {
    Expansion& expansion = *movie.expansion;
    const std::span<std::uint8_t> room{expansion.output.data() + expansion.produced,
                                       dueLength(expansion) - expansion.produced};
    const InflateProgress progress = inflateBytes(movie.inflater, compressed, room);
    expansion.produced += static_cast<std::uint32_t>(progress.produced);
    return progress;
}

// The last compressed bytes of a chunk must end its stream and fill its output, neither more nor less.
Result completeChunk(Movie& movie, std::uint32_t compressedLength) {
    Expansion& expansion = *movie.expansion;
    const InflateProgress progress = expandPart(movie, movie.reader.take(compressedLength));
    if (progress.status == InflateStatus::outOfMemory) return Result::outOfMemory;
    const bool exact = progress.status == InflateStatus::streamEnd && progress.consumed == compressedLength &&
                       expansion.produced == dueLength(expansion);
    if (!exact) return Result::badContent;
    if (!writeTemporaryContent(*movie.player, {expansion.output.data(), expansion.produced}))
        return Result::noTemporaryFile;

    expansion.produced = 0;
    answer(movie, LoadCode::again);
    if (++expansion.chunk < expansion.chunkSizes.size()) {
        movie.state.enter(Phase::sniff, SniffStep::expandChunk);
        return Result::done;
    }
    movie.expansion.reset();
    forgetCodeTables(movie.inflater);
    switchToTemporaryContent(*movie.player);
    movie.state.phase = Phase::reopen;
    movie.state.step = 0;
    return Result::done;
}

// All fed bytes are used up: what comes behind them.
Result askForNextBytes(Movie& movie) {
    askForBytes(movie, readerOffset(movie));
    return Result::done;
}

}  // namespace

Result beginExpansion(Movie& movie) {
    ContentReader& reader = movie.reader;
    ContentReader header = reader;
    header.skip(zvis::expandedLengthOffset);
    const std::uint32_t expandedLength = header.u32();
    header.seek(reader.cursor() + zvis::chunkCountOffset);
    const std::uint32_t chunkCount = header.u8();
    const std::uint32_t tableLength = header.u8();
    if (!header.available(tableLength + 2 * chunkCount) || !agrees(expandedLength, chunkCount))
        return Result::badContent;

    if (!createTemporaryContent(*movie.player, expandedLength)) return Result::noTemporaryFile;
    movie.expansion = makePooled<Expansion>(movie.pool);
    if (!movie.expansion) return Result::outOfMemory;
    movie.expansion->expandedLength = expandedLength;
    const Result copied = copyTables(*movie.expansion, header, tableLength, chunkCount, movie.pool);
    if (failed(copied)) return copied;
    if (!keepCodeTables(movie.inflater, movie.expansion->codeTables.span())) return Result::badContent;

    header.skip(tableLength + 2 * chunkCount);
    reader = header;
    movie.state.enter(Phase::sniff, SniffStep::expandChunk);
    answer(movie, LoadCode::again);
    return Result::done;
}

Result expandChunk(Movie& movie) {
    Expansion& expansion = *movie.expansion;
    ContentReader& reader = movie.reader;
    const std::uint32_t size = expansion.chunkSizes[expansion.chunk];
    const auto fed = static_cast<std::uint32_t>(reader.left());
    if (fed == 0) return askForNextBytes(movie);
    beginStream(movie.inflater);
    if (size <= fed) return completeChunk(movie, size);

    const InflateProgress progress = expandPart(movie, reader.take(fed));
    if (progress.status == InflateStatus::outOfMemory) return Result::outOfMemory;
    const bool wantsMore = progress.status != InflateStatus::streamEnd && progress.status != InflateStatus::broken &&
                           progress.consumed == fed;
    if (!wantsMore) return Result::badContent;
    expansion.compressedDue = size - fed;
    movie.state.enter(Phase::sniff, SniffStep::finishChunk);
    return askForNextBytes(movie);
}

Result finishChunk(Movie& movie) {
    // A chunk of this size never spans more than two feeds.
    if (!movie.reader.available(movie.expansion->compressedDue)) return Result::badContent;
    return completeChunk(movie, movie.expansion->compressedDue);
}

}  // namespace qel
