// The numbers of the record stream, for the reader of the engine and for the writer of the tools.
#pragma once

#include <cstdint>

namespace qel {

enum class RecordType : std::uint8_t {
    movieProperties = 1,
    characterDirectory = 2,
    keyFrameList = 3,
    purgeOrder = 4,
    releaseCharacters = 5,
    shape = 9,
    compressionTable = 11,
    bitmap = 12,
    frame = 16,
    textField = 18,
    nameTable = 19,
    blockTable = 20,
    alphaBitmap = 21,
    sound = 38,
    button = 39,
    sprite = 40,
    solidFill = 52,
    gradientFill = 53,
    bitmapFill = 54,
    lineStyle = 56,
    morphShape = 68,
    backgroundColour = 69,
    commandButton = 72,
    end = 254,
};

// How many bytes hold a record's length. The type alone decides, so a reader can skip types it does not know.
constexpr unsigned recordLengthBytes(std::uint8_t type) {
    if (type >= 1 && type <= 37) return 2;
    if (type >= 48 && type <= 254) return 1;
    return 4;
}
static_assert(recordLengthBytes(9) == 2 && recordLengthBytes(37) == 2 && recordLengthBytes(38) == 4);
static_assert(recordLengthBytes(48) == 1 && recordLengthBytes(0) == 4 && recordLengthBytes(255) == 4);

// The kinds of character that definitions make. The directory (record 2) stores these numbers.
enum class CharacterKind : std::uint8_t {
    solidFill = 0,
    gradientFill = 1,
    bitmapFill = 2,
    lineStyle = 3,
    shape = 4,
    morphShape = 5,
    bitmap = 6,
    frameCache = 8,
    sound = 9,
    compressionTable = 10,
    commandButton = 11,
    button = 15,
    sprite = 16,
    editText = 17,
    alphaBitmap = 18,
    none = 255,  // this side only: the record defines nothing
};

// The kind of character that a record of this type defines. A frame defines one only when it is cached.
constexpr CharacterKind definedKind(std::uint8_t type) {
    switch (RecordType{type}) {
        case RecordType::shape: return CharacterKind::shape;
        case RecordType::compressionTable: return CharacterKind::compressionTable;
        case RecordType::bitmap: return CharacterKind::bitmap;
        case RecordType::frame: return CharacterKind::frameCache;
        case RecordType::textField: return CharacterKind::editText;
        case RecordType::alphaBitmap: return CharacterKind::alphaBitmap;
        case RecordType::sound: return CharacterKind::sound;
        case RecordType::button: return CharacterKind::button;
        case RecordType::sprite: return CharacterKind::sprite;
        case RecordType::solidFill: return CharacterKind::solidFill;
        case RecordType::gradientFill: return CharacterKind::gradientFill;
        case RecordType::bitmapFill: return CharacterKind::bitmapFill;
        case RecordType::lineStyle: return CharacterKind::lineStyle;
        case RecordType::morphShape: return CharacterKind::morphShape;
        case RecordType::commandButton: return CharacterKind::commandButton;
        default: return CharacterKind::none;
    }
}

inline constexpr std::uint16_t noCharacter = 65535;

// Sub-records of record 1: a type byte, a length (u16 below type 48, else u8), then that many bytes.
enum class PropertyType : std::uint8_t {
    commands = 1,         // the global command list
    keyFrameIndex = 2,    // u16 count; count pairs of u16 frame, u16 frame cache identifier, ascending
    frameLabels = 3,      // u16 count; count times u16 frame, short text
    reserved52 = 52,      // align; UB[1]; UB[2]; u16 length; bytes
    frameCount = 53,      // u16
    background = 54,      // align; UB[4] colour format; the colour
    frameDuration = 55,   // u16 milliseconds; 0: frameCount - 1 durations of u16 follow
    reserved56 = 56,      // 2 bytes
    contentLength = 57,   // u32
    blob = 64,            // kept bytes
    reserved65 = 65,      // align; UB[2]
    stageRectangle = 66,  // rectangle; its maxima are the width and height
    dictionarySize = 67,  // u16
};

constexpr unsigned propertyLengthBytes(std::uint8_t type) { return type < 48 ? 2 : 1; }

}  // namespace qel
