#include "script/native_functions.h"

#include <cmath>

#include "movie/movie.h"
#include "script/conversions.h"
#include "script/numbers.h"

namespace qel {
namespace {

int digitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return 99;
}

// Digits of a base up to the first other byte, behind an optional sign; 32 bits wrap. Nothing where the first byte
// cannot begin a number. Among hexadecimal digits the device lets every byte from "0" to "f" begin one.
std::optional<std::int32_t> readInteger(std::string_view text, int base) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    const bool begins = base == 16 ? text[0] >= '0' && text[0] <= 'f' : digitOf(text[0]) < base;
    if (!begins) return std::nullopt;
    std::uint32_t value = 0;
    for (const char c : text) {
        if (digitOf(c) >= base) break;
        value = value * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(digitOf(c));
    }
    return static_cast<std::int32_t>(negative ? 0 - value : value);
}

std::optional<std::int32_t> parseWritten(std::string_view text, Arguments arguments) {
    if (arguments.size() > 1) {
        const double radix = truncated(numericValue(arguments[1]));
        return readInteger(text, radix == 16 ? 16 : radix == 8 ? 8 : 10);
    }
    if (text.size() >= 2 && (text.starts_with("0x") || text.starts_with("0X"))) return readInteger(text.substr(2), 16);
    return readInteger(text, text.starts_with('0') ? 8 : 10);
}

Value parseInt(ScriptMemory& memory, Arguments arguments) {
    const Value& value = arguments[0];
    if (value.is(ValueType::number)) return Value::number(memory, truncated(value.asNumber()));
    if (!value.is(ValueType::text)) return Value::constant(ValueType::notANumber);
    const std::optional<std::int32_t> number = parseWritten(value.asText().view(), arguments);
    return number ? Value::number(memory, *number) : Value::constant(ValueType::notANumber);
}

Value parseFloat(ScriptMemory& memory, const Value& value) {
    if (value.is(ValueType::number)) return value.copy();
    if (value.is(ValueType::text)) return toNumberValue(memory, value);
    return Value::constant(ValueType::notANumber);
}

}  // namespace

bool callNative(Movie& movie, const Text& name, Arguments arguments, Value& result) {
    if (!isNativeFunction(name.known)) return false;
    if (arguments.empty()) return true;
    ScriptMemory& memory = movie.scripts.memory;
    switch (name.known) {
        case KnownName::boolean: result = Value(toBoolean(arguments[0])); break;
        case KnownName::isNaN: result = Value(arguments[0].is(ValueType::notANumber)); break;
        case KnownName::parseInt: result = parseInt(memory, arguments); break;
        case KnownName::parseFloat: result = parseFloat(memory, arguments[0]); break;
        case KnownName::isFinite: {
            const Value number = toNumberValue(memory, arguments[0]);
            result = Value(number.is(ValueType::number) && std::isfinite(number.asNumber()));
            break;
        }
        default: break;
    }
    return true;
}

bool namesFunction(Movie& movie, const Text& name) {
    const Name known = findName(movie.scripts.memory, name.view());
    return isNativeFunction(knownName(name.view())) || (known && known->function);
}

}  // namespace qel
