#include "author/frame_items.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "author/structures.h"

namespace qel::author {

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes whole;
    for (const Bytes& part : parts) whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

Bytes item(std::uint8_t type, std::span<const std::uint8_t> body) {
    const auto length = static_cast<std::uint32_t>(body.size());
    ByteWriter to;
    to.u8(static_cast<std::uint32_t>(type << 4) | std::min<std::uint32_t>(length, longItemLength));
    if (length >= longItemLength) {
        const unsigned lengthBytes = itemLengthBytes(type);
        if (lengthBytes < 4 && length >> (8 * lengthBytes) != 0)
            throw std::length_error("a frame item of more than 65535 bytes");
        to.littleEndian(length, lengthBytes);
    }
    return to.bytes(body).take();
}

Bytes place(std::uint16_t characterId, std::uint8_t depth) {
    return item(FrameItemType::place, ByteWriter().u16(characterId).u8(depth).take());
}

Bytes removeAt(std::uint8_t depth) { return item(FrameItemType::remove, {&depth, 1}); }

Bytes move(std::uint8_t depth, const Matrix& matrix) {
    ByteWriter body;
    body.u8(depth);
    writeMatrix(body, matrix);
    return item(FrameItemType::move, body.take());
}

Bytes ratio(std::uint8_t depth, std::uint16_t value) {
    return item(FrameItemType::ratio, ByteWriter().u8(depth).u16(value).take());
}

Bytes colour(std::uint8_t depth, const ColourTransform& transform) {
    ByteWriter body;
    body.u8(depth);
    writeColourTransform(body, transform);
    return item(FrameItemType::colour, body.take());
}

Bytes alpha(std::uint8_t depth, std::uint8_t value) { return item(FrameItemType::alpha, std::array{depth, value}); }
Bytes startSound(std::uint16_t id) { return item(FrameItemType::startSound, ByteWriter().u16(id).take()); }
Bytes stopSound(std::uint16_t id) { return item(FrameItemType::stopSound, ByteWriter().u16(id).take()); }
Bytes volume(std::uint8_t value) { return item(FrameItemType::volume, {&value, 1}); }
Bytes commands(std::span<const std::uint8_t> list) { return item(FrameItemType::commands, list); }
Bytes instanceNumber(std::uint16_t number) {
    return item(FrameItemType::instanceNumber, ByteWriter().u16(number).take());
}
Bytes actions(std::span<const std::uint8_t> code) { return item(FrameItemType::actions, code); }

Bytes purgeOrderUpdate(std::span<const PurgePosition> positions) {
    unsigned width = 1;
    for (const PurgePosition& each : positions)
        for (const std::uint32_t value : {std::uint32_t{each.id}, std::uint32_t{each.position}})
            width = std::max(width, unsignedWidth({&value, 1}));
    ByteWriter body;
    body.ub(width - 1, 5);
    for (const PurgePosition& each : positions) body.ub(each.id, width).ub(each.position, width);
    body.ub(0, width).ub(0, width);  // position 0 ends the list
    return item(FrameItemType::purgeOrderUpdate, body.take());
}

namespace {

void writeEvents(ByteWriter& to, const ClipHandler& events) {
    to.ub(0, 3);
    for (const bool event : {events.onLoad, events.onUnload, events.onFrame, events.fourth, events.fifth})
        to.ub(event ? 1 : 0, 1);
}

}  // namespace

Bytes placeClip(const PlacedClip& clip) {
    ByteWriter body;
    body.u16(clip.characterId).u8(clip.depth);
    body.ub(0, 6).ub(clip.name.empty() ? 0 : 1, 1).ub(clip.handlers.empty() ? 0 : 1, 1);
    if (!clip.name.empty()) body.shortText(clip.name);
    if (!clip.handlers.empty()) {
        ClipHandler kinds;
        for (const ClipHandler& handler : clip.handlers) {
            kinds.onLoad |= handler.onLoad;
            kinds.onUnload |= handler.onUnload;
            kinds.onFrame |= handler.onFrame;
            kinds.fourth |= handler.fourth;
            kinds.fifth |= handler.fifth;
        }
        writeEvents(body, kinds);
        for (const ClipHandler& handler : clip.handlers) {
            constexpr std::size_t flagBytes = 2;
            body.u32(static_cast<std::uint32_t>(handler.code.size() + flagBytes));
            writeEvents(body, handler);
            body.u8(0).bytes(handler.code);
        }
    }
    return item(FrameItemType::placeClip, body.take());
}

Bytes command(CommandNumber number, std::span<const std::uint8_t> body) {
    if (body.empty() || body.size() > 255) throw std::length_error("a command body of none or of more than 255 bytes");
    const auto size = static_cast<std::uint32_t>(body.size());
    const std::uint32_t sizeCode = std::min<std::uint32_t>(size - 1, longCommandSizeCode);
    ByteWriter to;
    to.u8(static_cast<std::uint32_t>(number) << 2 | sizeCode);
    if (sizeCode == longCommandSizeCode) to.u8(size);
    return to.bytes(body).take();
}

Bytes textCommand(CommandNumber number, std::uint8_t event, std::string_view text) {
    return command(number, ByteWriter().u8(event).text(text).take());
}

}  // namespace qel::author
