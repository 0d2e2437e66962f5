#include "script/text_actions.h"

#include <algorithm>

#include "movie/movie.h"
#include "script/clip_paths.h"
#include "script/conversions.h"
#include "script/numbers.h"
#include "script/script_state.h"

namespace qel {
namespace {

Value newText(Movie& movie, TextHold text) {
    spendText(movie.scripts, text.view().size());
    return Value::text(movie.scripts.memory, std::move(text));
}

Value newText(Movie& movie, std::string_view bytes) { return newText(movie, makeText(movie.scripts.memory, bytes)); }

Value joined(Movie& movie, const Value& a, const Value& b) {
    const TextHold first = toText(movie, a), second = toText(movie, b);
    if (!first || !second) return {};
    return newText(movie, joinTexts(movie.scripts.memory, first.view(), second.view()));
}

Value extracted(Movie& movie, const Value& value, std::int32_t index, std::int32_t count) {
    if (!value.is(ValueType::text)) return {};
    const std::string_view text = value.asText().view();
    const auto length = static_cast<std::int64_t>(text.size());
    const std::int64_t start = std::clamp<std::int64_t>(std::int64_t{index} - 1, 0, length);
    std::int64_t bytes = count;
    if (bytes < 0 || start + bytes > length) bytes = length - start;
    return newText(movie, text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(bytes)));
}

Value firstByte(Movie& movie, const Value& value) {
    const TextHold text = toText(movie, value);
    const auto code = static_cast<std::int8_t>(text ? text->bytes[0] : 0);
    return newText(movie, formatInteger(code).view());
}

Value ofOneByte(Movie& movie, double number) {
    const auto c = static_cast<char>(static_cast<std::uint8_t>(toUint32(number)));
    return newText(movie, {&c, 1});
}

Value converted(Movie& movie, Action action, const Value& value) {
    ScriptMemory& memory = movie.scripts.memory;
    switch (action) {
        case Action::stringLength:
            return value.is(ValueType::text) ? Value::number(memory, value.asText().length) : Value();
        case Action::charToAscii:
        case Action::wideCharToAscii: return firstByte(movie, value);
        case Action::asciiToChar:
        case Action::wideAsciiToChar: return ofOneByte(movie, numericValue(value));
        case Action::typeOf: return newText(movie, typeName(movie, value));
        case Action::targetPath:
            return value.is(ValueType::clip) ? newText(movie, clipTargetPath(movie, value.asAnchor())) : Value();
        case Action::toNumber: return toNumberValue(memory, value);
        default: return toTextValue(movie, value);
    }
}

}  // namespace

Value sumOrJoined(Movie& movie, const Value& a, const Value& b) {
    constexpr unsigned char leastFirstByte = 14;
    const auto joins = [](const Value& value) {
        return value.is(ValueType::text) && static_cast<unsigned char>(value.asText().bytes[0]) >= leastFirstByte;
    };
    if (joins(a) || joins(b)) return joined(movie, a, b);
    return Value::number(movie.scripts.memory, numericValue(a) + numericValue(b));
}

bool performTextAction(Movie& movie, Action action) {
    ValueStack& stack = movie.scripts.stack;
    switch (action) {
        case Action::stringExtract: {
            const std::int32_t count = toInt32(numericValue(stack.pop())), index = toInt32(numericValue(stack.pop()));
            const Value text = stack.pop();
            stack.push(extracted(movie, text, index, count));
            return true;
        }
        case Action::stringAdd: {
            const Value b = stack.pop(), a = stack.pop();
            stack.push(joined(movie, a, b));
            return true;
        }
        case Action::stringLength:
        case Action::charToAscii:
        case Action::wideCharToAscii:
        case Action::asciiToChar:
        case Action::wideAsciiToChar:
        case Action::typeOf:
        case Action::targetPath:
        case Action::toNumber:
        case Action::toText: {
            const Value value = stack.pop();
            stack.push(converted(movie, action, value));
            return true;
        }
        default: return false;
    }
}

}  // namespace qel
