// What the numbers of the format are called in listings. Names are lower camel case; numbers that mean nothing are
// "unknown".
#pragma once

#include <cstdint>

namespace qel::author::inspector {

inline constexpr const char* unknownName = "unknown";

const char* recordName(std::uint8_t type);
const char* propertyName(std::uint8_t type);
const char* frameItemName(std::uint8_t type);
const char* commandName(std::uint8_t number);
const char* commandEventName(std::uint8_t event);  // "key" for every plain key code
const char* pathRecordName(std::uint8_t kind);
const char* characterKindName(std::uint8_t kind);
const char* colourFormatName(std::uint8_t format);
const char* safRecordName(std::uint8_t type);
const char* safHeaderName(std::uint8_t type);
const char* safEncodingName(std::uint8_t encoding);

}  // namespace qel::author::inspector
