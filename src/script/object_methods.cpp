#include "script/object_methods.h"

#include <bit>

#include "movie/movie.h"
#include "script/clip_object.h"
#include "script/conversions.h"
#include "script/math_functions.h"
#include "script/numbers.h"
#include "script/scope.h"
#include "script/script_state.h"
#include "script/text_methods.h"

namespace qel {
namespace {

// --- arrays

std::int32_t lengthOf(const ScriptContext& scripts, const ScriptObject& array) {
    const Value* length = propertyOf(array, scripts.lengthName);
    return length ? toInt32(numericValue(*length)) : 0;
}

void setLength(ScriptContext& scripts, ScriptObject& array, double length) {
    setPropertyValue(scripts.memory, array, scripts.lengthName, Value::number(scripts.memory, length));
}

// The index behind another one, in 32 bits.
std::int32_t nextIndex(std::int32_t index) { return wrap32(std::int64_t{index} + 1); }

Value pushElement(const MethodCall& call, ScriptObject& array) {
    if (call.arguments.empty()) return {};
    ScriptContext& scripts = call.movie.scripts;
    ScriptMemory& memory = scripts.memory;
    const std::int32_t length = lengthOf(scripts, array);
    setPropertyValue(memory, array, indexName(memory, length), call.arguments[0].copy());
    setLength(scripts, array, length + 1.0);
    return Value::number(memory, length + 1.0);
}

Value popElement(const MethodCall& call, ScriptObject& array) {
    ScriptContext& scripts = call.movie.scripts;
    const std::int32_t length = lengthOf(scripts, array);
    if (length < 1) return {};
    const Name key = indexName(scripts.memory, length - 1);
    Variable* element = key ? array.properties.find(key) : nullptr;
    Value value;
    if (element) std::swap(value, element->value);
    setLength(scripts, array, length - 1.0);
    return value;
}

bool isLength(const Name& name) { return name->known == KnownName::length; }

Value concatArrays(const MethodCall& call, ScriptObject& array) {
    ScriptMemory& memory = call.movie.scripts.memory;
    ScriptObject* made = newObject(call.movie.scripts.objects, "Array");
    if (!made) return {};
    Value result = Value::object(*made);
    spend(call.movie.scripts, array.properties.size());
    for (std::uint32_t i = 0; i < array.properties.size(); ++i)
        setPropertyValue(memory, *made, array.properties[i].name, array.properties[i].value.copy());
    std::int32_t next = lengthOf(call.movie.scripts, array);
    for (Value& argument : call.arguments) {
        const bool isArray = argument.is(ValueType::object) && argument.asObject().kind == ObjectClass::array;
        if (!isArray) {
            setPropertyValue(memory, *made, indexName(memory, next), std::move(argument));
            next = nextIndex(next);
            continue;
        }
        VariableList& elements = argument.asObject().properties;
        spend(call.movie.scripts, elements.size());
        for (std::uint32_t i = 0; i < elements.size() && !memory.exhausted; ++i) {
            if (isLength(elements[i].name)) continue;
            setPropertyValue(memory, *made, indexName(memory, next), elements[i].value.copy());
            next = nextIndex(next);
        }
    }
    setLength(call.movie.scripts, *made, next);
    return result;
}

Value callArrayMethod(const MethodCall& call, ScriptObject& array) {
    if (call.name->known == KnownName::push) return pushElement(call, array);
    if (call.name->known == KnownName::pop) return popElement(call, array);
    if (call.name.view() == "concat") return concatArrays(call, array);
    return {};
}

// --- numbers

Value numberText(const MethodCall& call, const ScriptObject& object) {
    ScriptMemory& memory = call.movie.scripts.memory;
    const Value* value = propertyOf(object, call.movie.scripts.valueName);
    const double whole = value ? truncated(numericValue(*value)) : 0;
    const double radix = call.arguments.empty() ? 10 : truncated(numericValue(call.arguments[0]));
    constexpr int hexadecimal = 16, binary = 2;
    if (radix != hexadecimal && radix != binary) return Value::text(memory, formatNumber(whole).view());
    const bool isBinary = radix == binary;
    // The lowest 31 bits in base 2, all 32 in base 16; 0 has a digit only there.
    std::uint32_t bits = toUint32(whole);
    if (isBinary) bits &= 0x7FFFFFFF;
    char digits[33];
    std::size_t at = std::size(digits);
    const unsigned shift = isBinary ? 1 : 4;
    while (bits != 0) {
        digits[--at] = "0123456789abcdef"[bits & ((1u << shift) - 1)];
        bits >>= shift;
    }
    if (at == std::size(digits) && !isBinary) digits[--at] = '0';
    return Value::text(memory, std::string_view(digits + at, std::size(digits) - at));
}

std::optional<double> numberConstant(std::string_view name) {
    if (name == "MAX_VALUE") return std::bit_cast<double>(std::uint64_t{0x7FEFFFFFFFFFFFE2});
    if (name == "MIN_VALUE") return std::bit_cast<double>(std::uint64_t{1});
    return std::nullopt;
}

Value numberMember(ScriptMemory& memory, std::string_view name) {
    if (name == "NaN") return Value::constant(ValueType::notANumber);
    if (name == "NEGATIVE_INFINITY") return Value::constant(ValueType::negativeInfinity);
    if (name == "POSITIVE_INFINITY") return Value::constant(ValueType::infinity);
    const std::optional<double> number = numberConstant(name);
    return number ? Value::number(memory, *number) : Value();
}

Value objectMember(Movie& movie, const ScriptObject& object, const Name& key) {
    ScriptMemory& memory = movie.scripts.memory;
    switch (object.kind) {
        case ObjectClass::math: {
            const std::optional<double> number = mathConstant(key.view());
            return number ? Value::number(memory, *number) : Value();
        }
        case ObjectClass::number:
            if (&object == &movie.scripts.number || !propertyOf(object, key)) return numberMember(memory, key.view());
            break;
        case ObjectClass::key: return {};
        default: break;
    }
    const Value* property = propertyOf(object, key);
    return property ? property->copy() : Value();
}

// An array grows to hold a new index.
void growArray(ScriptContext& scripts, ScriptObject& array, const Name& name) {
    if (array.className.view() != "Array" || isLength(name)) return;
    const std::optional<double> number = parseNumber(name.view());
    if (!number || formatInteger(toInt32(*number)).view() != name.view()) return;
    const std::int32_t index = toInt32(*number);
    if (index >= 0 && index + 1.0 > lengthOf(scripts, array)) setLength(scripts, array, index + 1.0);
}

}  // namespace

Value makeArray(Movie& movie, Arguments elements) {
    ScriptMemory& memory = movie.scripts.memory;
    ScriptObject* made = newObject(movie.scripts.objects, "Array");
    if (!made) return {};
    Value array = Value::object(*made);
    std::int32_t index = 0;
    for (Value& element : elements) {
        if (memory.exhausted) break;
        setPropertyValue(memory, *made, indexName(memory, index++), std::move(element));
    }
    setLength(movie.scripts, *made, index);
    return array;
}

bool isBuiltInClass(std::string_view name) {
    return name == "String" || name == "Array" || name == "Number" || name == "Color" || name == "Sound" ||
           name == "Date";
}

Value constructBuiltIn(Movie& movie, std::string_view className, Arguments arguments) {
    ScriptContext& scripts = movie.scripts;
    if (className == "String")
        return arguments.empty() ? Value::text(scripts.memory, std::string_view()) : toTextValue(movie, arguments[0]);
    if (className == "Array") {
        const bool onlyLength = arguments.size() == 1 && arguments[0].is(ValueType::number);
        Value made = makeArray(movie, onlyLength ? Arguments() : arguments);
        if (onlyLength && made.is(ValueType::object)) setLength(scripts, made.asObject(), arguments[0].asNumber());
        return made;
    }
    ScriptObject* object = newObject(scripts.objects, className);
    if (!object) return {};
    Value made = Value::object(*object);
    if (className == "Number" && !arguments.empty())
        setPropertyValue(scripts.memory, *object, scripts.valueName, toNumberValue(scripts.memory, arguments[0]));
    return made;
}

bool hasUserMethods(const Value& object, const Name& method) {
    if (!object.is(ValueType::object) || method.view() == "toString") return false;
    const ObjectClass kind = object.asObject().kind;
    return kind == ObjectClass::plain || kind == ObjectClass::prototype;
}

Value callBuiltIn(const MethodCall& call) {
    const std::string_view name = call.name.view();
    const bool isObject = call.object.is(ValueType::object);
    const bool isNumber = isObject && call.object.asObject().kind == ObjectClass::number;
    if (name == "toString" && !isNumber) return toTextValue(call.movie, call.object);
    if (name == "valueOf" && !isObject) return {};
    if (call.object.is(ValueType::clip))
        return callClipMethod(call.movie, Target(call.object.asAnchor()), name, call.arguments);
    if (call.object.is(ValueType::text)) return callTextMethod(call);
    if (!isObject) return {};
    ScriptObject& object = call.object.asObject();
    switch (object.kind) {
        case ObjectClass::array: return callArrayMethod(call, object);
        case ObjectClass::math: return callMath(call);
        case ObjectClass::string: return callStringClass(call);
        case ObjectClass::number: return name == "toString" ? numberText(call, object) : Value();
        default: return {};
    }
}

Value getMember(Movie& movie, const Value& object, const Name& name) {
    if (!name) return {};
    switch (object.type()) {
        case ValueType::object: return objectMember(movie, object.asObject(), name);
        case ValueType::clip: return getClipMember(movie, Target(object.asAnchor()), name);
        case ValueType::text:
            return isLength(name) ? Value::number(movie.scripts.memory, object.asText().length) : Value();
        case ValueType::function:
            return name.view() == "prototype" ? Value::object(object.asFunction().prototype) : Value();
        default: return {};
    }
}

void setMember(Movie& movie, const Value& object, const Name& name, Value value) {
    if (!name) return;
    if (object.is(ValueType::clip)) return setClipMember(movie, Target(object.asAnchor()), name, std::move(value));
    if (!object.is(ValueType::object)) return;
    setPropertyValue(movie.scripts.memory, object.asObject(), name, std::move(value));
    growArray(movie.scripts, object.asObject(), name);
}

}  // namespace qel
