// The headers of "VIS" and "ZVIS" files and of the older "SAF" container: where each field lies, in bytes from the
// start. Numbers are little-endian except those of "SAF".
#pragma once

#include <cstdint>
#include <span>

namespace qel {

enum class ContentFamily : std::uint8_t { unknown, vis, zvis, saf, stream };

// Which family the first bytes announce. Needs four bytes for "ZVIS", three for the others.
constexpr ContentFamily contentFamily(std::span<const std::uint8_t> head) {
    const auto starts = [head](char a, char b, char c) {
        return head.size() >= 3 && head[0] == a && head[1] == b && head[2] == c;
    };
    if (starts('V', 'I', 'S')) return ContentFamily::vis;
    if (starts('S', 'A', 'F')) return ContentFamily::saf;
    if (starts('Z', 'V', 'I') && head.size() >= 4 && head[3] == 'S') return ContentFamily::zvis;
    if (starts('M', 'S', 'F') || starts('M', 'S', 'S')) return ContentFamily::stream;
    return ContentFamily::unknown;
}

namespace vis {
inline constexpr std::uint32_t headerSize = 29;
inline constexpr std::uint32_t flagsOffset = 3;
inline constexpr std::uint32_t versionOffset = 4;
inline constexpr std::uint32_t extensionOffset = 10;      // bit 7: an extension block follows the movie data
inline constexpr std::uint32_t legacyOffset = 11;         // what a version below 16 hands to the frame decoder
inline constexpr std::uint32_t contentLengthOffset = 17;  // u32: bytes of movie data, counted from offset 0
inline constexpr std::uint32_t frameCountOffset = 21;     // u16
inline constexpr std::uint32_t widthOffset = 23;          // u16, pixels
inline constexpr std::uint32_t heightOffset = 25;         // u16, pixels

// The flags byte.
inline constexpr std::uint8_t scanDefinitions = 0x80;  // the loader looks for definitions; else record 2 lists them
inline constexpr std::uint8_t dropFrames = 0x40;       // fixed-rate pacing
inline constexpr std::uint8_t fontModeMask = 0x0C;
inline constexpr unsigned fontModeShift = 2;
inline constexpr std::uint8_t trailer = 0x04;  // a font block precedes the extension block
inline constexpr std::uint8_t fitToScreen = 0x02;
// The byte at extensionOffset.
inline constexpr std::uint8_t hasExtension = 0x80;

inline constexpr unsigned firstRecordVersion = 16;  // below it the content belongs to the frame decoder
inline constexpr unsigned firstFitVersion = 22;     // below it the stage always fits the screen
}  // namespace vis

// Where the clock's glyphs come from (bits 3 and 2 of the flags byte).
enum class FontMode : std::uint8_t { builtIn = 0, block = 1, none2 = 2, none3 = 3 };

namespace zvis {
inline constexpr std::uint32_t headerSize = 20;  // then the code tables, the chunk sizes, the chunks
inline constexpr std::uint32_t expandedLengthOffset = 4;
inline constexpr std::uint32_t fileLengthOffset = 8;
inline constexpr std::uint32_t widthOffset = 14;        // u16, for hosts only
inline constexpr std::uint32_t heightOffset = 16;       // u16, for hosts only
inline constexpr std::uint32_t chunkCountOffset = 18;   // u8
inline constexpr std::uint32_t tableLengthOffset = 19;  // u8
inline constexpr std::uint32_t chunkSize = 2048;        // what every chunk but the last expands to
}  // namespace zvis

namespace saf {
inline constexpr std::uint32_t versionOffset = 4;
inline constexpr std::uint32_t contentLengthOffset = 5;  // u16, big-endian
inline constexpr std::uint32_t firstRecordOffset = 7;
}  // namespace saf

}  // namespace qel
