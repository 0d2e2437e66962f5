// Writes frame items and command lists. Every function gives the bytes of one whole item or command.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "author/byte_writer.h"
#include "format/commands.h"
#include "format/frame_items.h"
#include "format/geometry.h"

namespace qel::author {

// The bytes one behind the other.
Bytes joined(std::initializer_list<Bytes> parts);

// Any type and body, also such as no frame should have.
Bytes item(std::uint8_t type, std::span<const std::uint8_t> body);
inline Bytes item(FrameItemType type, std::span<const std::uint8_t> body) {
    return item(static_cast<std::uint8_t>(type), body);
}

// Depths are positions in the drawing order, counted from 0, as they stand when the item is applied.
Bytes place(std::uint16_t characterId, std::uint8_t depth);
Bytes removeAt(std::uint8_t depth);
Bytes move(std::uint8_t depth, const Matrix& matrix);
Bytes ratio(std::uint8_t depth, std::uint16_t ratio);
Bytes colour(std::uint8_t depth, const ColourTransform& transform);
Bytes alpha(std::uint8_t depth, std::uint8_t alpha);
Bytes startSound(std::uint16_t id);
Bytes stopSound(std::uint16_t id);
Bytes volume(std::uint8_t volume);
Bytes commands(std::span<const std::uint8_t> list);
Bytes instanceNumber(std::uint16_t number);
Bytes actions(std::span<const std::uint8_t> code);

struct PurgePosition {
    std::uint16_t id = 0;
    std::uint8_t position = 0;  // counted from 1
};
Bytes purgeOrderUpdate(std::span<const PurgePosition> positions);

// Code that a clip runs on events: one bit each for what starts it.
struct ClipHandler {
    bool onLoad = false, onUnload = false, onFrame = false, fourth = false, fifth = false;
    Bytes code = {};
};
struct PlacedClip {
    std::uint16_t characterId = 0;
    std::uint8_t depth = 0;
    std::string name;  // empty: none
    std::vector<ClipHandler> handlers;
};
Bytes placeClip(const PlacedClip& clip);

// One command of a list: its number and body, whose first byte is the event code.
Bytes command(CommandNumber number, std::span<const std::uint8_t> body);
inline Bytes command(CommandNumber number, std::uint8_t event) { return command(number, {&event, 1}); }
Bytes textCommand(CommandNumber number, std::uint8_t event, std::string_view text);

}  // namespace qel::author
