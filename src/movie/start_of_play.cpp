#include "movie/start_of_play.h"

#include <limits>

#include "movie/movie.h"
#include "player/engine_services.h"
#include "script/machine.h"

namespace qel {
namespace {

// An extension block larger than the device's whole memory is no block.
constexpr std::uint32_t largestExtension = 16u << 20;

// A trailer block: its length, then as many bytes. `offset` is moved behind it.
Result readBlock(Movie& movie, std::uint32_t offset, std::uint32_t length, Pool& pool, PoolArray<std::uint8_t>& block) {
    if (failed(block.assignZeros(pool, length))) return Result::outOfMemory;
    return length == 0 || readContent(*movie.player, offset, block.span()) ? Result::done : Result::badContent;
}

// The length of the font block at the end of the movie data.
Result readFontLength(Movie& movie, std::uint32_t& length) {
    std::uint8_t bytes[2];
    if (movie.header.contentLength > std::numeric_limits<std::uint32_t>::max() - sizeof bytes)
        return Result::badContent;
    if (!readContent(*movie.player, movie.header.contentLength, bytes)) return Result::badContent;
    length = ContentReader(bytes).u16();
    return Result::done;
}

Result readExtension(Movie& movie, std::uint64_t at) {
    std::uint8_t bytes[4];
    const auto offset = static_cast<std::uint32_t>(at);
    if (at > std::numeric_limits<std::uint32_t>::max() - sizeof bytes) return Result::badContent;
    if (!readContent(*movie.player, offset, bytes)) return Result::badContent;
    const std::uint32_t size = ContentReader(bytes).u32();
    if (size > largestExtension) return Result::outOfMemory;
    return readBlock(movie, offset + static_cast<std::uint32_t>(sizeof bytes), size, movie.heap, movie.extensionBlock);
}

Result readTrailers(Movie& movie) {
    const MovieHeader& header = movie.header;
    constexpr std::uint32_t lengthBytes = 2;
    std::uint32_t fontLength = 0;
    const bool usesFont = header.fontMode == FontMode::block;
    if (usesFont || (header.trailer && header.hasExtension)) {
        const Result read = readFontLength(movie, fontLength);
        if (failed(read)) return read;
    }
    if (usesFont && fontLength != 0) {
        const Result read =
            readBlock(movie, header.contentLength + lengthBytes, fontLength, movie.pool, movie.fontBlock);
        if (failed(read)) return read;
    }
    constexpr int probeSize = 12;
    movie.deviceText = services(*movie.player).rendersText(*movie.player->host, "test", probeSize);
    if (!header.hasExtension) return Result::done;
    return readExtension(movie, std::uint64_t{header.contentLength} + (header.trailer ? fontLength + lengthBytes : 0));
}

// The state that every pass through the content begins with.
void enterPass(Movie& movie) {
    movie.frameIndex = 0;
    movie.pacing.frameStart = tickCount(*movie.player);
    movie.pacing.firstFrame = true;
    movie.position = movie.firstFramePosition;
    movie.reader = ContentReader();
    movie.fullRedraw = true;
    movie.state.restartRequested = false;  // this is where a restart leads
    movie.state.enter(Phase::play, PlayStep::nextFrame);
    askForBytes(movie, movie.firstFramePosition);
    answer(movie, LoadCode::newPass);
}

// What commands have set: every pass begins as the first one did.
void resetControl(Movie& movie) {
    movie.target = Movie::noTarget;
    movie.instanceCounter = 0;
    movie.view = identityMatrix;
    movie.viewMoved = true;
    movie.state.rootStopped = false;
    movie.state.frameLoopActive = false;
    movie.state.buttonChangePending = false;
    movie.state.gotoPerformed = false;
}

}  // namespace

Result startPlay(Movie& movie) {
    const Result read = readTrailers(movie);
    if (failed(read)) return read;
    enterPass(movie);
    return Result::done;
}

Result rewindMovie(Movie& movie) {
    for (DisplayList* list : {&movie.root, &movie.rootKept, &movie.waiting}) clearList(*list);
    movie.nextPlacement = {};
    movie.drawingAt = nullptr;
    movie.keys.clear();
    movie.frameCommands.truncate(0);
    movie.gotoFrame = {};
    resetControl(movie);
    const Result reset = resetScripts(movie);
    if (failed(reset)) return reset;
    freeCharacters(movie.dictionary);
    enterPass(movie);
    return Result::done;
}

}  // namespace qel
