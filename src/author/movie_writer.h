// Puts whole files together: "VIS" movies from their records, "ZVIS" from any "VIS" bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "author/records.h"
#include "format/file_header.h"

namespace qel::author {

// A movie as a run of records. The defaults make a small movie that plays; every field can be made wrong on purpose.
struct MovieFile {
    std::uint8_t version = 22;
    std::uint16_t width = 240, height = 320;  // stage, pixels
    bool scanDefinitions = true;
    bool dropFrames = false;
    bool fitToScreen = false;
    std::uint8_t fontMode = 0;

    std::vector<Bytes> leading;  // records in front of record 1
    Properties properties;       // record 1
    std::vector<Bytes> records;  // definitions and frames, in the order of the stream
    bool ended = true;           // record 254 behind them

    std::optional<Bytes> fontBlock;       // behind the movie data, where fontMode asks for it
    std::optional<Bytes> extensionBlock;  // behind that

    std::optional<std::uint32_t> contentLength;  // in the header; the true one when not given
    std::optional<std::uint16_t> frameCount;     // in the header; the count of frame records when not given
};
Bytes visFile(const MovieFile& movie);

// The 29 bytes of the header alone.
struct VisHeader {
    std::uint8_t flags = 0;
    std::uint8_t version = 22;
    bool hasExtension = false;
    std::uint32_t contentLength = 0;
    std::uint16_t frameCount = 0;
    std::uint16_t width = 240, height = 320;
};
Bytes visHeader(const VisHeader& fields);

// Where each of the records that `visFile` writes behind record 1 lies in the file, for directories.
std::vector<Location> recordLocations(const MovieFile& movie);

// Compresses a "VIS" file. Throws std::length_error when it takes more than 255 chunks of 2048 bytes.
Bytes zvisFile(std::span<const std::uint8_t> visBytes);

}  // namespace qel::author
