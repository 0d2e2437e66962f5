#include "script/comparison.h"

#include <algorithm>
#include <cmath>

#include "script/conversions.h"
#include "script/numbers.h"

namespace qel {
namespace {

// The double that a comparison across classes uses; none for what is no finite number's record.
std::optional<double> comparable(const Value& value) {
    if (value.is(ValueType::number)) return value.asNumber();
    if (value.is(ValueType::text)) return numberIn(value.asText());
    return std::nullopt;
}

bool equalAcross(const Value& a, const Value& b, ComparisonClass classA, ComparisonClass classB) {
    using Class = ComparisonClass;
    const auto isEither = [&](Class one, Class other) {
        return (classA == one && classB == other) || (classA == other && classB == one);
    };
    if (isEither(Class::null, Class::undefined)) return true;
    if (isEither(Class::number, Class::text)) {
        const std::optional<double> left = comparable(a), right = comparable(b);
        return left && right && *left == *right;
    }
    if (classA != Class::boolean && classB != Class::boolean) return false;
    const Value& truth = classA == Class::boolean ? a : b;
    const Value& other = classA == Class::boolean ? b : a;
    return other.is(ValueType::number) && std::isfinite(other.asNumber()) &&
           other.asNumber() == (truth.is(ValueType::yes) ? 1 : 0);
}

bool equalNumbers(const Value& a, const Value& b) {
    if (a.is(ValueType::number) && b.is(ValueType::number)) return a.asNumber() == b.asNumber();
    return a.type() == b.type() && !a.is(ValueType::notANumber);
}

// Comparing long texts is work.
void countComparison(const Value& a, const Value& b) {
    a.asText().memory->spend(std::min(a.asText().length, b.asText().length) / 64);
}

}  // namespace

bool textLess(std::string_view a, std::string_view b) {
    return std::string_view::traits_type::compare(a.data(), b.data(), std::min(a.size(), b.size())) < 0 ||
           (a.size() < b.size() && b.starts_with(a));
}

bool equalValues(const Value& a, const Value& b) {
    const ComparisonClass classA = comparisonClass(a), classB = comparisonClass(b);
    if (classA != classB) return equalAcross(a, b, classA, classB);
    switch (classA) {
        case ComparisonClass::null:
        case ComparisonClass::undefined: return true;
        case ComparisonClass::number: return equalNumbers(a, b);
        case ComparisonClass::text: countComparison(a, b); return a.asText().view() == b.asText().view();
        case ComparisonClass::boolean: return a.type() == b.type();
        case ComparisonClass::object: return &a.asObject() == &b.asObject();
        case ComparisonClass::function: return &a.asFunction() == &b.asFunction();
        case ComparisonClass::clip: return a.asAnchor() == b.asAnchor();
    }
    return false;
}

Value lessValues(ScriptMemory& memory, const Value& a, const Value& b) {
    if (a.is(ValueType::text) && b.is(ValueType::text)) {
        countComparison(a, b);
        return Value(textLess(a.asText().view(), b.asText().view()));
    }
    const Value left = toNumberValue(memory, a), right = toNumberValue(memory, b);
    if (left.is(ValueType::notANumber) || right.is(ValueType::notANumber)) return {};
    if (left.is(ValueType::infinity)) return Value(false);
    if (right.is(ValueType::infinity)) return Value(true);
    if (right.is(ValueType::negativeInfinity)) return Value(false);
    if (left.is(ValueType::negativeInfinity)) return Value(true);
    return Value(left.is(ValueType::number) && right.is(ValueType::number) && left.asNumber() < right.asNumber());
}

}  // namespace qel
