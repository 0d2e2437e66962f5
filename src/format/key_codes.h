// The keys of the device. A key code is one byte; these have names, and tools spell them in lower case with hyphens.
// Codes 138 to 145 and 156 to 159 are keys without a name.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qel {

enum class KeyCode : std::uint8_t {
    number0 = 128,  // the digits follow one another up to number9
    number9 = 137,
    send = 146,
    end = 147,
    left = 148,
    right = 149,
    up = 150,
    down = 151,
    menu = 152,
    ok = 153,
    cancel = 154,  // ends a movie that does not loop, before buttons or commands see it
    select = 155,
    reserved0 = 160,  // likewise up to reserved9
    reserved9 = 169,
};

struct KeyName {
    std::string_view name;
    std::uint8_t code;
};

inline constexpr std::array<KeyName, 30> keyNames{{
    {"number-0", 128},   {"number-1", 129},   {"number-2", 130},   {"number-3", 131},   {"number-4", 132},
    {"number-5", 133},   {"number-6", 134},   {"number-7", 135},   {"number-8", 136},   {"number-9", 137},
    {"send", 146},       {"end", 147},        {"left", 148},       {"right", 149},      {"up", 150},
    {"down", 151},       {"menu", 152},       {"ok", 153},         {"cancel", 154},     {"select", 155},
    {"reserved-0", 160}, {"reserved-1", 161}, {"reserved-2", 162}, {"reserved-3", 163}, {"reserved-4", 164},
    {"reserved-5", 165}, {"reserved-6", 166}, {"reserved-7", 167}, {"reserved-8", 168}, {"reserved-9", 169},
}};

// The code of the key with this name; nothing when no key has it.
constexpr std::optional<std::uint8_t> keyCodeOf(std::string_view name) {
    for (const KeyName& key : keyNames)
        if (key.name == name) return key.code;
    return std::nullopt;
}

// The name of the key with this code; empty when it has none.
constexpr std::string_view keyNameOf(std::uint8_t code) {
    for (const KeyName& key : keyNames)
        if (key.code == code) return key.name;
    return {};
}

static_assert(keyCodeOf("number-9") == std::uint8_t(KeyCode::number9) && keyNameOf(160) == "reserved-0");
static_assert(keyCodeOf("select") == std::uint8_t(KeyCode::select) && keyNameOf(138).empty() && !keyCodeOf(""));

}  // namespace qel
