// Values as numbers, texts, truth and type names.
#pragma once

#include <optional>

#include "script/name.h"
#include "script/value.h"

namespace qel {

struct Movie;

std::optional<double> numberIn(const Text& text);  // counts as work
double numericValue(const Value& value);           // what is no number, text or `true` gives 0
Value toNumberValue(ScriptMemory& memory, const Value& value);
bool toBoolean(const Value& value);

// The text of a value: none when memory is exhausted. Arrays in arrays are shown 16 deep.
TextHold toText(Movie& movie, const Value& value);
Value toTextValue(Movie& movie, const Value& value);

// A name: the text of a value that is one, else what it converts to.
Name nameOf(Movie& movie, const Value& value);

// "number", "string" and so on. A text that is the name of a function counts as one.
std::string_view typeName(Movie& movie, const Value& value);

// Values in the order of the device's comparisons.
enum class ComparisonClass : std::uint8_t { number, text, boolean, null, undefined, object, clip, function };
ComparisonClass comparisonClass(const Value& value);

// The number's double, where it is one; the constants have none.
inline bool isNumberRecord(const Value& value) { return value.is(ValueType::number); }

}  // namespace qel
