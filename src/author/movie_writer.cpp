#include "author/movie_writer.h"

#include <algorithm>
#include <stdexcept>

#include "author/deflate.h"

namespace qel::author {
namespace {

void append(Bytes& to, std::span<const std::uint8_t> bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }

std::uint8_t flagsOf(const MovieFile& movie) {
    const unsigned flags = (movie.scanDefinitions ? vis::scanDefinitions : 0u) |
                           (movie.dropFrames ? vis::dropFrames : 0u) | unsigned{movie.fontMode} << vis::fontModeShift |
                           (movie.fitToScreen ? vis::fitToScreen : 0u);
    return static_cast<std::uint8_t>(flags);
}

// Everything from the first record to the last: the movie data without the header.
Bytes recordBytes(const MovieFile& movie) {
    Bytes bytes;
    for (const Bytes& record : movie.leading) append(bytes, record);
    append(bytes, movie.properties.record());
    for (const Bytes& record : movie.records) append(bytes, record);
    if (movie.ended) append(bytes, endRecord());
    return bytes;
}

std::uint16_t countFrames(const MovieFile& movie) {
    return static_cast<std::uint16_t>(std::ranges::count_if(movie.records, [](const Bytes& record) {
        return !record.empty() && record[0] == static_cast<std::uint8_t>(RecordType::frame);
    }));
}

std::uint16_t littleEndian16(std::span<const std::uint8_t> bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

}  // namespace

Bytes visHeader(const VisHeader& fields) {
    ByteWriter to;
    to.text("VIS").u8(fields.flags).u8(fields.version).u32(0).u8(0).u8(fields.hasExtension ? vis::hasExtension : 0u);
    to.u16(0).u32(0).u32(fields.contentLength).u16(fields.frameCount).u16(fields.width).u16(fields.height).u16(0);
    return to.take();
}

Bytes visFile(const MovieFile& movie) {
    const Bytes records = recordBytes(movie);
    const auto trueLength = static_cast<std::uint32_t>(vis::headerSize + records.size());
    Bytes file = visHeader({.flags = flagsOf(movie),
                            .version = movie.version,
                            .hasExtension = movie.extensionBlock.has_value(),
                            .contentLength = movie.contentLength.value_or(trueLength),
                            .frameCount = movie.frameCount.value_or(countFrames(movie)),
                            .width = movie.width,
                            .height = movie.height});
    append(file, records);
    if (movie.fontBlock) {
        const auto length = static_cast<std::uint32_t>(movie.fontBlock->size());
        append(file, ByteWriter().u16(length).bytes(*movie.fontBlock).take());
    }
    if (movie.extensionBlock) {
        const auto size = static_cast<std::uint32_t>(movie.extensionBlock->size());
        append(file, ByteWriter().u32(size).bytes(*movie.extensionBlock).take());
    }
    return file;
}

std::vector<Location> recordLocations(const MovieFile& movie) {
    std::size_t offset = vis::headerSize + movie.properties.record().size();
    for (const Bytes& record : movie.leading) offset += record.size();
    std::vector<Location> locations;
    for (const Bytes& record : movie.records) {
        locations.push_back({static_cast<std::uint32_t>(offset), static_cast<std::uint32_t>(record.size())});
        offset += record.size();
    }
    return locations;
}

Bytes zvisFile(std::span<const std::uint8_t> visBytes) {
    constexpr std::size_t mostChunks = 255;
    const std::size_t chunkCount = (visBytes.size() + zvis::chunkSize - 1) / zvis::chunkSize;
    if (chunkCount > mostChunks)
        throw std::length_error("the movie has " + std::to_string(visBytes.size()) +
                                " bytes; a ZVIS file holds at most " + std::to_string(mostChunks * zvis::chunkSize));
    const CodeTables tables = chooseCodeTables(visBytes, zvis::chunkSize);
    std::vector<Bytes> chunks;
    for (std::size_t i = 0; i < chunkCount; ++i) {
        const std::size_t start = i * zvis::chunkSize;
        const std::size_t size = std::min<std::size_t>(zvis::chunkSize, visBytes.size() - start);
        chunks.push_back(deflateWithTables(visBytes.subspan(start, size), tables));
    }
    std::size_t fileLength = zvis::headerSize + tables.description.size() + 2 * chunkCount;
    for (const Bytes& chunk : chunks) fileLength += chunk.size();

    const bool hasStage = visBytes.size() >= vis::headerSize;
    ByteWriter to;
    to.text("ZVIS").u32(static_cast<std::uint32_t>(visBytes.size())).u32(static_cast<std::uint32_t>(fileLength)).u16(0);
    to.u16(hasStage ? littleEndian16(visBytes, vis::widthOffset) : 0u);
    to.u16(hasStage ? littleEndian16(visBytes, vis::heightOffset) : 0u);
    to.u8(static_cast<std::uint32_t>(chunkCount)).u8(static_cast<std::uint32_t>(tables.description.size()));
    to.bytes(tables.description);
    for (const Bytes& chunk : chunks) to.u16(static_cast<std::uint32_t>(chunk.size()));
    for (const Bytes& chunk : chunks) to.bytes(chunk);
    return to.take();
}

}  // namespace qel::author
