#include "author/character_records.h"

#include <stdexcept>

#include "author/records.h"
#include "author/structures.h"

namespace qel::author {
namespace {

void writeLooks(ByteWriter& to, const ButtonLooks& looks) { to.u16(looks.up).u16(looks.over).u16(looks.down); }

}  // namespace

Bytes sound(const SoundRecord& fields) {
    ByteWriter body;
    body.u16(fields.id).u16(fields.sampleValue).ub(fields.format, 4).ub(fields.rateCode, 2);
    body.ub(fields.flag1 ? 1 : 0, 1).ub(fields.flag2 ? 1 : 0, 1).u8(fields.channelValue);
    return record(RecordType::sound, body.bytes(fields.data).take());
}

Bytes button(std::uint16_t id, const ButtonLooks& looks, std::span<const ButtonCondition> conditions) {
    ByteWriter body;
    body.u16(id);
    writeLooks(body, looks);
    body.u8(0);
    for (const ButtonCondition& condition : conditions) {
        const std::size_t length =
            1u + condition.focusedKey.has_value() + condition.key.has_value() + condition.code.size();
        constexpr std::size_t mostBytes = 65535;
        if (length > mostBytes) throw std::length_error("a button's condition of more than 65535 bytes");
        body.u16(static_cast<std::uint32_t>(length)).ub(0, 4);
        body.ub(condition.focusLost ? 1 : 0, 1).ub(condition.focusGained ? 1 : 0, 1);
        body.ub(condition.focusedKey ? 1 : 0, 1).ub(condition.key ? 1 : 0, 1);
        if (condition.focusedKey) body.u8(*condition.focusedKey);
        if (condition.key) body.u8(*condition.key);
        body.bytes(condition.code);
    }
    return record(RecordType::button, body.take());
}

Bytes commandButton(std::uint16_t id, const ButtonLooks& looks, std::uint8_t key,
                    std::span<const std::uint8_t> commands) {
    ByteWriter body;
    body.u16(id);
    writeLooks(body, looks);
    return record(RecordType::commandButton, body.u8(key).u8(0).bytes(commands).take());
}

Bytes textField(const TextFieldRecord& fields) {
    constexpr std::uint32_t hasVariable = 0x200, hasExtraValue = 0x100;
    const std::uint32_t flags = (fields.flags & ~(hasVariable | hasExtraValue)) | (fields.variable ? hasVariable : 0) |
                                (fields.extraValue ? hasExtraValue : 0);
    ByteWriter body;
    body.u16(fields.id);
    writeRect(body, fields.bounds);
    body.u16(flags);
    if (fields.variable) body.shortText(*fields.variable);
    if (fields.extraValue) body.u16(*fields.extraValue);
    body.bytes(fields.values);
    writeColourValue(body, ColourFormat::rgb888, fields.colour);
    return record(RecordType::textField, body.u8(fields.value4).shortText(fields.text).take());
}

Bytes compressionTable(std::uint16_t id, std::span<const std::uint8_t> description) {
    return record(RecordType::compressionTable, ByteWriter().u16(id).bytes(description).take());
}

}  // namespace qel::author
