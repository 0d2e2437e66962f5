#include "host/keyboard.h"

#include "format/key_codes.h"

namespace qel {
namespace {

struct Binding {
    std::string_view name;
    KeyCode key;
};

// The digits are computed. Letters are for those who look for a name, function keys for layouts without Latin letters.
constexpr Binding bindings[] = {
    {"Left", KeyCode::left},
    {"Right", KeyCode::right},
    {"Up", KeyCode::up},
    {"Down", KeyCode::down},
    {"Return", KeyCode::select},
    {"Keypad Enter", KeyCode::select},
    {"Backspace", KeyCode::cancel},
    {"Escape", KeyCode::cancel},
    {"M", KeyCode::menu},
    {"F2", KeyCode::menu},
    {"S", KeyCode::send},
    {"F3", KeyCode::send},
    {"E", KeyCode::end},
    {"F4", KeyCode::end},
    {"O", KeyCode::ok},
    {"F5", KeyCode::ok},
};

std::optional<std::uint8_t> digitKey(std::string_view name) {
    constexpr std::string_view keypad = "Keypad ";
    if (name.starts_with(keypad)) name.remove_prefix(keypad.size());
    if (name.size() != 1 || name[0] < '0' || name[0] > '9') return std::nullopt;
    return static_cast<std::uint8_t>(static_cast<int>(KeyCode::number0) + (name[0] - '0'));
}

}  // namespace

const std::array<KeyboardHelp, 11> keyboardHelp{{
    {"0 to 9", "numbers"},
    {"arrows", "directions"},
    {"Enter", "select"},
    {"Backspace", "cancel"},
    {"Escape", "cancel"},
    {"M or F2", "menu"},
    {"S or F3", "send"},
    {"E or F4", "end"},
    {"O or F5", "ok"},
    {"F1", "pause and help"},
    {"Q", "leave"},
}};

std::optional<std::uint8_t> keyCodeForKeyboard(std::string_view name, std::string_view place) {
    if (const std::optional<std::uint8_t> digit = digitKey(name)) return digit;
    for (const Binding& binding : bindings)
        if (binding.name == name) return static_cast<std::uint8_t>(binding.key);
    return digitKey(place);
}

}  // namespace qel
