// Writes the definitions of what sounds, reacts to keys and shows text: one whole record each, header included.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "author/byte_writer.h"
#include "format/geometry.h"
#include "format/record_types.h"

namespace qel::author {

// Definitions that the player reads in one piece have at most this many bytes, the record's header included: fills,
// lines, morph shapes, command buttons, text fields and compression tables.
inline constexpr std::size_t wholeDefinitionBytes = 2078;

struct SoundRecord {
    std::uint16_t id = 0;
    std::uint16_t sampleValue = 0;  // kept
    std::uint8_t format = 0;        // 0 to 15; 8 plays on the first channel, 0, 4, 5, 7 and 10 on the second
    std::uint8_t rateCode = 0;      // 0 to 3
    bool flag1 = false, flag2 = false;
    std::uint8_t channelValue = 0;  // handed to the host with the sound
    Bytes data = {};
};
Bytes sound(const SoundRecord& fields);

// The characters that a button shows; noCharacter shows nothing.
struct ButtonLooks {
    std::uint16_t up = noCharacter, over = noCharacter, down = noCharacter;
};

// Action code and what runs it: any of the four.
struct ButtonCondition {
    bool focusLost = false, focusGained = false;
    std::optional<std::uint8_t> focusedKey = {};  // this key while the button has the focus
    std::optional<std::uint8_t> key = {};         // this key, whatever has the focus
    Bytes code = {};
};
Bytes button(std::uint16_t id, const ButtonLooks& looks, std::span<const ButtonCondition> conditions);

// The commands run when the key comes while the button has the focus. The record holds 245 bytes of them.
Bytes commandButton(std::uint16_t id, const ButtonLooks& looks, std::uint8_t key,
                    std::span<const std::uint8_t> commands);

struct TextFieldRecord {
    std::uint16_t id = 0;
    Rect bounds;
    std::uint16_t flags = 0;                       // beside those that say what of the next two is there
    std::optional<std::string> variable = {};      // whose value is shown; at most 255 bytes
    std::optional<std::uint16_t> extraValue = {};  // kept
    std::array<std::uint8_t, 3> values = {};       // kept
    std::uint32_t colour = 0;                      // 0xRRGGBB
    std::uint8_t value4 = 0;                       // kept
    std::string text = {};                         // at most 255 bytes
};
Bytes textField(const TextFieldRecord& fields);

// The description of deflate code tables that compressed pixels begin with.
Bytes compressionTable(std::uint16_t id, std::span<const std::uint8_t> description);

}  // namespace qel::author
