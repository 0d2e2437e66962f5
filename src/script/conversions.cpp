#include "script/conversions.h"

#include "movie/movie.h"
#include "script/clip_paths.h"
#include "script/native_functions.h"
#include "script/numbers.h"
#include "script/script_state.h"

namespace qel {
namespace {

TextHold textAt(Movie& movie, const Value& value, int depth);

// A text that grows; the last piece of it may be refused.
struct Joined {
    Movie& movie;
    TextHold text;
    void add(std::string_view more) { text = joinTexts(movie.scripts.memory, text.view(), more); }
};

TextHold arrayText(Movie& movie, const ScriptObject& array, int depth) {
    constexpr int deepest = 16;
    ScriptMemory& memory = movie.scripts.memory;
    Joined joined{movie, makeText(memory, "")};
    if (depth == deepest) return joined.text;
    const Value* lengthValue = propertyOf(array, movie.scripts.lengthName);
    const std::int32_t length = lengthValue ? toInt32(numericValue(*lengthValue)) : 0;
    for (std::int32_t i = 0; i < length && !memory.exhausted; ++i) {
        const Name key = indexName(memory, i);
        const Value* element = key ? propertyOf(array, key) : nullptr;
        const TextHold text = element ? textAt(movie, *element, depth + 1) : makeText(memory, "undefined");
        spend(movie.scripts, 1 + joined.text.view().size() / 64);
        if (memory.actionsLeft == 0) break;  // the run is over
        if (i > 0) joined.add(",");
        joined.add(text.view());
    }
    return joined.text;
}

TextHold objectText(Movie& movie, const ScriptObject& object, int depth) {
    ScriptMemory& memory = movie.scripts.memory;
    if (object.kind == ObjectClass::array) return arrayText(movie, object, depth);
    if (object.kind == ObjectClass::number) {
        const Value* value = propertyOf(object, movie.scripts.valueName);
        constexpr int deepest = 16;
        if (depth == deepest) return makeText(memory, "");
        return value ? textAt(movie, *value, depth + 1) : makeText(memory, "0");
    }
    return makeText(memory, "object");
}

TextHold textAt(Movie& movie, const Value& value, int depth) {
    ScriptMemory& memory = movie.scripts.memory;
    switch (value.type()) {
        case ValueType::yes: return makeText(memory, "true");
        case ValueType::no: return makeText(memory, "false");
        case ValueType::null: return makeText(memory, "null");
        case ValueType::undefined: return makeText(memory, "undefined");
        case ValueType::notANumber: return makeText(memory, "NaN");
        case ValueType::infinity: return makeText(memory, "Infinity");
        case ValueType::negativeInfinity: return makeText(memory, "-Infinity");
        case ValueType::object: return objectText(movie, value.asObject(), depth);
        case ValueType::clip: return clipDotPath(movie, value.asAnchor());
        case ValueType::function: return makeText(memory, "function");
        case ValueType::number: return makeText(memory, formatNumber(value.asNumber()).view());
        case ValueType::text: return TextHold(&value.asText());
    }
    return {};
}

}  // namespace

// Reading a number from a long text is work.
std::optional<double> numberIn(const Text& text) {
    text.memory->spend(text.length / 64);
    return parseNumber(text.view());
}

double numericValue(const Value& value) {
    switch (value.type()) {
        case ValueType::yes: return 1;
        case ValueType::number: return value.asNumber();
        case ValueType::text: return numberIn(value.asText()).value_or(0);
        default: return 0;
    }
}

Value toNumberValue(ScriptMemory& memory, const Value& value) {
    switch (value.type()) {
        case ValueType::yes: return Value::number(memory, 1);
        case ValueType::no:
        case ValueType::null:
        case ValueType::undefined:
        case ValueType::object:
        case ValueType::function: return Value::number(memory, 0);
        case ValueType::notANumber:
        case ValueType::infinity:
        case ValueType::negativeInfinity:
        case ValueType::number: return value.copy();
        case ValueType::text: {
            const std::optional<double> number = numberIn(value.asText());
            return number ? Value::number(memory, *number) : Value::constant(ValueType::notANumber);
        }
        case ValueType::clip: break;
    }
    return Value::constant(ValueType::notANumber);
}

bool toBoolean(const Value& value) {
    switch (value.type()) {
        case ValueType::yes:
        case ValueType::infinity:
        case ValueType::negativeInfinity:
        case ValueType::object:
        case ValueType::clip: return true;
        case ValueType::number: return value.asNumber() != 0;
        case ValueType::text: return value.asText().view() == "true";
        default: return false;
    }
}

TextHold toText(Movie& movie, const Value& value) { return textAt(movie, value, 0); }

Value toTextValue(Movie& movie, const Value& value) { return Value::text(movie.scripts.memory, toText(movie, value)); }

Name nameOf(Movie& movie, const Value& value) {
    ScriptMemory& memory = movie.scripts.memory;
    if (value.is(ValueType::number)) {
        const double number = value.asNumber();
        const std::int32_t index = toInt32(number);
        if (index == number) return indexName(memory, index);
    }
    return asName(memory, toText(movie, value));
}

std::string_view typeName(Movie& movie, const Value& value) {
    switch (value.type()) {
        case ValueType::yes:
        case ValueType::no: return "boolean";
        case ValueType::null: return "null";
        case ValueType::undefined: return "undefined";
        case ValueType::notANumber:
        case ValueType::infinity:
        case ValueType::negativeInfinity:
        case ValueType::number: return "number";
        case ValueType::object: return "object";
        case ValueType::clip: return "movieclip";
        case ValueType::function: return "function";
        case ValueType::text: return namesFunction(movie, value.asText()) ? "function" : "string";
    }
    return "undefined";
}

ComparisonClass comparisonClass(const Value& value) {
    switch (value.type()) {
        case ValueType::yes:
        case ValueType::no: return ComparisonClass::boolean;
        case ValueType::null: return ComparisonClass::null;
        case ValueType::undefined: return ComparisonClass::undefined;
        case ValueType::notANumber:
        case ValueType::infinity:
        case ValueType::negativeInfinity:
        case ValueType::number: return ComparisonClass::number;
        case ValueType::object: return ComparisonClass::object;
        case ValueType::clip: return ComparisonClass::clip;
        case ValueType::function: return ComparisonClass::function;
        case ValueType::text: break;
    }
    return ComparisonClass::text;
}

}  // namespace qel
