// What the numbers of the format are called in listings. Names are lower camel case; numbers that mean nothing are
// "unknown".
#pragma once

#include <cstdint>
#include <string_view>

namespace qel::author::inspector {

inline constexpr const char* unknownName = "unknown";

const char* recordName(std::uint8_t type);
const char* propertyName(std::uint8_t type);
const char* frameItemName(std::uint8_t type);
const char* commandName(std::uint8_t number);
std::string_view commandEventName(std::uint8_t event);  // a key's name, "key" for one without
const char* pathRecordName(std::uint8_t kind);
const char* characterKindName(std::uint8_t kind);
const char* colourFormatName(std::uint8_t format);
const char* safRecordName(std::uint8_t type);
const char* safHeaderName(std::uint8_t type);
const char* safEncodingName(std::uint8_t encoding);

}  // namespace qel::author::inspector
