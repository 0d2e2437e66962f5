#include "movie/button.h"

#include <algorithm>

namespace qel {
namespace {

constexpr std::uint32_t conditionHead = 3;  // u16 length, the condition bits

void readLooks(ContentReader& body, ButtonCharacter& button) {
    body.u16();  // the identifier
    for (std::uint16_t& look : button.looks) look = body.u16();
}

// Opens the condition at the reader's cursor. `nothing`: its head is not all there.
Result openCondition(Button& button, ContentReader& reader, Pool& pool) {
    ContentReader ahead = reader;
    if (button.bytesLeft < conditionHead) return Result::brokenDefinition;
    if (!ahead.available(conditionHead)) return Result::nothing;
    const std::uint32_t length = ahead.u16();
    ButtonCondition condition;
    ahead.ub(4);
    condition.onFocusLost = ahead.ub(1) != 0;
    condition.onFocusGained = ahead.ub(1) != 0;
    condition.hasFocusedKey = ahead.ub(1) != 0;
    condition.hasAnyTimeKey = ahead.ub(1) != 0;
    const std::uint32_t keys = (condition.hasFocusedKey ? 1u : 0u) + (condition.hasAnyTimeKey ? 1u : 0u);
    if (length < 1 + keys || length + 2 > button.bytesLeft) return Result::brokenDefinition;
    if (!ahead.available(keys)) return Result::nothing;
    if (condition.hasFocusedKey) condition.focusedKey = ahead.u8();
    if (condition.hasAnyTimeKey) condition.anyTimeKey = ahead.u8();
    if (failed(condition.code.assignZeros(pool, length - keys))) return Result::outOfMemory;
    if (failed(button.conditions.append(pool, std::move(condition)))) return Result::outOfMemory;
    button.bytesLeft -= conditionHead + keys;
    reader = ahead;
    return Result::done;
}

// The code is one byte shorter than the room for it, which ends with a zero.
std::uint32_t codeMissing(const ButtonCondition& condition) { return condition.code.size() - 1 - condition.filled; }

void fillCode(Button& button, ContentReader& reader) {
    ButtonCondition& condition = button.conditions.back();
    const std::span<const std::uint8_t> bytes =
        reader.take(std::min<std::size_t>(reader.left(), codeMissing(condition)));
    std::copy(bytes.begin(), bytes.end(), condition.code.begin() + condition.filled);
    condition.filled += static_cast<std::uint32_t>(bytes.size());
    button.bytesLeft -= static_cast<std::uint32_t>(bytes.size());
}

}  // namespace

Result beginButton(ContentReader& body, std::uint32_t bodyLength, Pool& pool, PoolPtr<Button>& button) {
    constexpr std::uint32_t headLength = 9;
    if (bodyLength < headLength || !body.available(headLength)) return Result::brokenDefinition;
    PoolPtr<Button> loading = makeCharacter<Button>(pool, CharacterKind::button);
    if (!loading) return Result::outOfMemory;
    readLooks(body, *loading);
    body.u8();  // not used
    loading->bytesLeft = bodyLength - headLength;
    button = std::move(loading);
    return Result::done;
}

Result continueButton(Button& button, ContentReader& reader, Pool& pool) {
    for (;;) {
        if (!button.conditions.empty() && codeMissing(button.conditions.back()) != 0) {
            fillCode(button, reader);
            if (codeMissing(button.conditions.back()) != 0) return Result::nothing;
        }
        if (button.bytesLeft == 0) return Result::done;
        const Result opened = openCondition(button, reader, pool);
        if (opened != Result::done) return opened;
    }
}

Result defineCommandButton(ContentReader body, Pool& pool, PoolPtr<CommandButton>& button) {
    PoolPtr<CommandButton> loading = makeCharacter<CommandButton>(pool, CharacterKind::commandButton);
    if (!loading) return Result::outOfMemory;
    readLooks(body, *loading);
    loading->key = body.u8();
    body.u8();  // not used
    if (!body.ok()) return Result::brokenDefinition;
    const Result read = readCommands(ContentReader(body.rest()), pool, loading->commands);
    if (failed(read)) return read == Result::outOfMemory ? read : Result::brokenDefinition;
    button = std::move(loading);
    return Result::done;
}

}  // namespace qel
