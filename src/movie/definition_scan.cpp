#include "movie/definition_scan.h"

#include <limits>

#include "movie/movie.h"
#include "movie/record_header.h"
#include "movie/section.h"

namespace qel {
namespace {

// How many bytes are asked for at the next record: as many as the likely header needs with its identifier.
constexpr std::uint32_t afterDefinition = 7;
constexpr std::uint32_t afterSkipped = 5;
constexpr std::uint32_t spriteHeader = 9;

// Asks again for a record that is not all there, with as much as its type needs.
void askForMore(Movie& movie, std::uint32_t offset) {
    std::uint32_t length = afterSkipped;
    if (movie.reader.available(1)) {
        const std::uint8_t type = ContentReader(movie.reader).u8();
        if (RecordType{type} == RecordType::sprite)
            length = spriteHeader;
        else if (scannedBytes(type) > afterSkipped)
            length = afterDefinition;
    }
    askForBytes(movie, offset, length);
}

}  // namespace

Result scanDefinition(Movie& movie) {
    const std::uint32_t offset = readerOffset(movie);
    if (movie.reader.available(1) && ContentReader(movie.reader).u8() == static_cast<std::uint8_t>(RecordType::end))
        return requestFrameBuffer(movie);
    ScannedRecord scanned;
    if (!scanRecord(movie.reader, scanned)) {
        askForMore(movie, offset);
        return Result::done;
    }

    const std::uint64_t next = std::uint64_t{offset} + scanned.header.length();
    if (next > std::numeric_limits<std::uint32_t>::max()) return Result::badContent;
    const bool defines =
        scanned.id != noCharacter && registerCharacter(movie.dictionary, scanned.id, definedKind(scanned.header.type),
                                                       offset, static_cast<std::uint32_t>(scanned.header.length()));
    askForBytes(movie, static_cast<std::uint32_t>(next), defines ? afterDefinition : afterSkipped);
    return Result::done;
}

Result requestFrameBuffer(Movie& movie) {
    const MovieHeader& header = movie.header;
    movie.information = makePooled<MovieInformation>(movie.pool);
    if (!movie.information) return Result::outOfMemory;
    movie.information->version = header.version;
    movie.information->width = static_cast<std::uint16_t>(header.stage.xMax);
    movie.information->height = static_cast<std::uint16_t>(header.stage.yMax);
    movie.information->paletteCount = header.hasBackground ? 1 : 0;
    movie.information->extra = header.initialBackground;
    movie.information->option2 = header.dropFrames ? 1 : 0;
    movie.state.enter(Phase::load, LoadStep::frameBuffer);
    movie.position = movie.firstFramePosition;
    movie.loadStatus.information = movie.information.get();
    answer(movie, LoadCode::contentOpened);
    return Result::done;
}

}  // namespace qel
