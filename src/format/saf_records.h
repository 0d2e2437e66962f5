// The numbers of the older "SAF" container. A record is a type byte, a big-endian u16 length and that many bytes; an
// object's image blocks follow its record, each behind a big-endian u16 length of its own.
#pragma once

#include <cstdint>

namespace qel {

enum class SafRecordType : std::uint8_t {
    object = 4,  // fixed fields with a u8 attribute; then the image
    frame = 6,   // background, placements
    header = 7,  // sub-records
    end = 8,
    deflatedBlock = 11,        // code tables
    objectWideAttribute = 12,  // as `object`, with a u16 attribute
    maskedObject = 13,         // as `object`; then the image and its mask
    maskedObjectWideAttribute = 14,
};

// Sub-records of the header record: a type byte, a u8 length, then that many bytes.
enum class SafHeaderType : std::uint8_t {
    surface = 1,          // u8 width, u8 height, u8 bits per pixel, 3 bytes; with 7 bytes or more a u32
    objects = 2,          // u8 object count, u8 colour table mode; the table follows
    frames = 3,           // u8 frame count, 2 bytes
    colourKeys = 9,       // u8 count; entries of 2, 3 or 4 bytes, by depth
    frameDurations = 10,  // u16 milliseconds; 0: one u16 for each frame follows
};

// Bits 6 and 5 of the colour table byte.
enum class SafTableMode : std::uint8_t { none = 0, table = 1, greyRamp = 2, skippedTable = 3 };

enum class SafImageEncoding : std::uint8_t { refused0 = 0, deflated = 1, jpeg = 3, refused16 = 16 };

namespace saf {
inline constexpr unsigned lastVersion = 3;
inline constexpr unsigned frameCountLimit = 127;  // as many and more are bad content
inline constexpr unsigned lastObjectNumber = 128;
inline constexpr unsigned deepestBitsPerPixel = 8;  // what the output surface takes
}  // namespace saf

}  // namespace qel
