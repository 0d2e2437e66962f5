#include "script/number_actions.h"

#include "movie/movie.h"
#include "player/engine_services.h"
#include "script/comparison.h"
#include "script/conversions.h"
#include "script/numbers.h"

namespace qel {
namespace {

Value quotient(ScriptMemory& memory, double a, double b) {
    if (b != 0) return Value::number(memory, a / b);
    return Value::constant(a > 0 ? ValueType::infinity : a < 0 ? ValueType::negativeInfinity : ValueType::notANumber);
}

Value remainder(ScriptMemory& memory, std::int32_t a, std::int32_t b) {
    if (b == 0) return Value::constant(ValueType::notANumber);
    return Value::number(memory, static_cast<double>(std::int64_t{a} % b));
}

double randomBelow(RandomState& state, double most) {
    const std::uint32_t limit = toUint32(most);
    return most < 1 || limit == 0 ? 0 : nextRandom(state) % limit;
}

// Of one operand, or of none.
bool performUnary(Movie& movie, Action action) {
    ScriptContext& scripts = movie.scripts;
    const auto popNumber = [&] { return numericValue(scripts.stack.pop()); };
    double result = 0;
    switch (action) {
        case Action::toInteger: result = truncated(popNumber()); break;
        case Action::increment: result = popNumber() + 1; break;
        case Action::decrement: result = popNumber() - 1; break;
        case Action::randomNumber: result = randomBelow(scripts.random, popNumber()); break;
        case Action::getTime: result = tickCount(*movie.player) - scripts.startTime; break;
        case Action::logicalNot: {
            const bool truth = toBoolean(scripts.stack.pop());
            scripts.stack.push(Value(!truth));
            return true;
        }
        default: return false;
    }
    scripts.stack.push(Value::number(scripts.memory, result));
    return true;
}

Value calculated(ScriptMemory& memory, Action action, double a, double b) {
    const std::uint32_t bitsA = toUint32(a), bitsB = toUint32(b), count = bitsB & 31;
    const auto number = [&memory](double value) { return Value::number(memory, value); };
    switch (action) {
        case Action::add: return number(a + b);
        case Action::multiply: return number(a * b);
        case Action::divide: return quotient(memory, a, b);
        case Action::modulo: return remainder(memory, toInt32(a), toInt32(b));
        case Action::bitAnd: return number(static_cast<std::int32_t>(bitsA & bitsB));
        case Action::bitOr: return number(static_cast<std::int32_t>(bitsA | bitsB));
        case Action::bitXor: return number(static_cast<std::int32_t>(bitsA ^ bitsB));
        case Action::bitLeftShift: return number(static_cast<std::int32_t>(bitsA << count));
        case Action::bitRightShift: return number(static_cast<std::int32_t>(bitsA) >> count);
        default: return number(bitsA >> count);
    }
}

Value compared(ScriptMemory& memory, Action action, const Value& a, const Value& b) {
    const bool texts = a.is(ValueType::text) && b.is(ValueType::text);
    switch (action) {
        case Action::equals: return Value(numericValue(a) == numericValue(b));
        case Action::less: return Value(numericValue(a) < numericValue(b));
        case Action::logicalAnd: return Value(toBoolean(a) && toBoolean(b));
        case Action::logicalOr: return Value(toBoolean(a) || toBoolean(b));
        case Action::stringEquals: return Value(texts && equalValues(a, b));
        case Action::stringLess: return texts ? lessValues(memory, a, b) : Value(false);
        case Action::equals2: return Value(equalValues(a, b));
        default: return lessValues(memory, a, b);
    }
}

enum class Operands : std::uint8_t { numbers, values, others };
Operands operandsOf(Action action) {
    switch (action) {
        case Action::add:
        case Action::multiply:
        case Action::divide:
        case Action::modulo:
        case Action::bitAnd:
        case Action::bitOr:
        case Action::bitXor:
        case Action::bitLeftShift:
        case Action::bitRightShift:
        case Action::bitUnsignedRightShift: return Operands::numbers;
        case Action::equals:
        case Action::less:
        case Action::logicalAnd:
        case Action::logicalOr:
        case Action::stringEquals:
        case Action::stringLess:
        case Action::equals2:
        case Action::less2:
        case Action::subtract: return Operands::values;
        default: return Operands::others;
    }
}

}  // namespace

Value difference(ScriptMemory& memory, const Value& a, const Value& b) {
    const auto sign = [](const Value& value) {
        return value.is(ValueType::infinity) ? 1 : value.is(ValueType::negativeInfinity) ? -1 : 0;
    };
    const int signA = sign(a), signB = sign(b);
    const bool nan = a.is(ValueType::notANumber) || b.is(ValueType::notANumber);
    if (nan || (signA != 0 && signA == signB)) return Value::constant(ValueType::notANumber);
    const int result = signA != 0 ? signA : -signB;
    if (result == 0) return Value::number(memory, numericValue(a) - numericValue(b));
    return Value::constant(result > 0 ? ValueType::infinity : ValueType::negativeInfinity);
}

bool performNumberAction(Movie& movie, Action action) {
    ScriptContext& scripts = movie.scripts;
    switch (operandsOf(action)) {
        case Operands::others: return performUnary(movie, action);
        case Operands::numbers: {
            const double b = numericValue(scripts.stack.pop()), a = numericValue(scripts.stack.pop());
            scripts.stack.push(calculated(scripts.memory, action, a, b));
            return true;
        }
        case Operands::values: break;
    }
    const Value b = scripts.stack.pop(), a = scripts.stack.pop();
    scripts.stack.push(action == Action::subtract ? difference(scripts.memory, a, b)
                                                  : compared(scripts.memory, action, a, b));
    return true;
}

}  // namespace qel
