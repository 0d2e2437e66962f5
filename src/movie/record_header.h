// The header in front of every record of the stream.
#pragma once

#include "format/record_types.h"
#include "movie/content_reader.h"

namespace qel {

struct RecordHeader {
    std::uint8_t type = 0;
    std::uint32_t headerLength = 0;  // bytes of the header itself
    std::uint32_t bodyLength = 0;
    // Of the whole record; 64 bits, because content may announce any length.
    std::uint64_t length() const { return std::uint64_t{headerLength} + bodyLength; }
};

// Reads the header at the reader's cursor and moves behind it; false, with the reader unmoved, when not all of it is
// there.
inline bool readRecordHeader(ContentReader& reader, RecordHeader& header) {
    ContentReader ahead = reader;
    if (!ahead.available(1)) return false;
    header.type = ahead.u8();
    const unsigned lengthBytes = recordLengthBytes(header.type);
    if (!ahead.available(lengthBytes)) return false;
    header.headerLength = 1 + lengthBytes;
    header.bodyLength = ahead.littleEndian(lengthBytes);
    reader = ahead;
    return true;
}

// A record's header with the identifier that its definition begins with.
struct ScannedRecord {
    RecordHeader header;
    std::uint16_t id = noCharacter;  // noCharacter: it defines nothing
};

// How many bytes of a record its header takes together with the identifier. A sprite's stands behind a length.
constexpr std::uint32_t scannedBytes(std::uint8_t type) {
    const std::uint32_t header = 1 + recordLengthBytes(type);
    if (definedKind(type) == CharacterKind::none) return header;
    return header + (RecordType{type} == RecordType::sprite ? 4 : 2);
}

// Reads as much of the record at the reader's cursor as names it, whatever its body holds; the reader stays. False when
// it is not all there.
inline bool scanRecord(const ContentReader& reader, ScannedRecord& scanned) {
    ContentReader ahead = reader;
    if (!readRecordHeader(ahead, scanned.header)) return false;
    if (!reader.available(scannedBytes(scanned.header.type))) return false;
    scanned.id = noCharacter;
    if (definedKind(scanned.header.type) == CharacterKind::none) return true;
    const bool sprite = RecordType{scanned.header.type} == RecordType::sprite;
    if (scanned.header.bodyLength < (sprite ? 4 : 2)) return true;  // it ends in front of its identifier
    if (sprite) ahead.u16();
    scanned.id = ahead.u16();
    return true;
}

}  // namespace qel
