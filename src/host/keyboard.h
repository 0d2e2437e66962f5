// Which keys of a computer's keyboard stand for which keys of the device, for windows that play content.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qel {

// The key code of a keyboard key, or nothing when it stands for none. `name` is what is printed on the key in the
// user's layout, `place` what is printed there in the US layout; both in the words of the window library: "A", "7",
// "Return", "Left", "F2", "Keypad 7". The place counts for digits only, which some layouts have on the shifted side.
std::optional<std::uint8_t> keyCodeForKeyboard(std::string_view name, std::string_view place);

// The same for people to read, in ASCII: the keys, and what they do in the window. Short enough for a phone's screen.
struct KeyboardHelp {
    std::string_view keys, meaning;
};
extern const std::array<KeyboardHelp, 11> keyboardHelp;

}  // namespace qel
