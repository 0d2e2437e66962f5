#include "script/math_functions.h"

#include <cmath>
#include <limits>

#include "movie/movie.h"
#include "script/conversions.h"
#include "script/numbers.h"

namespace qel {
namespace {

// For numbers below zero the device goes on where more than half is cut off. 32-bit integers.
double roundAsTheDevice(double x) {
    if (x >= 0) return toInt32(x + 0.5);
    const std::int32_t whole = toInt32(x);
    return whole - x > 0.5 ? static_cast<std::int32_t>(static_cast<std::uint32_t>(whole) - 1) : whole;
}

using OneArgument = double (*)(double);

OneArgument functionOf(std::string_view name) {
    struct Row {
        std::string_view name;
        OneArgument function;
    };
    static constexpr Row rows[] = {
        {"abs", [](double x) { return std::fabs(x); }},          {"acos", [](double x) { return std::acos(x); }},
        {"asin", [](double x) { return std::asin(x); }},         {"atan", [](double x) { return std::atan(x); }},
        {"ceil", [](double x) { return std::ceil(x); }},         {"cos", [](double x) { return std::cos(x); }},
        {"exp", [](double x) { return std::exp(x); }},           {"floor", [](double x) { return std::floor(x); }},
        {"log", [](double x) { return std::log(x); }},           {"sin", [](double x) { return std::sin(x); }},
        {"sqrt", [](double x) { return std::sqrt(x); }},         {"tan", [](double x) { return std::tan(x); }},
        {"round", [](double x) { return roundAsTheDevice(x); }},
    };
    for (const Row& row : rows)
        if (row.name == name) return row.function;
    return nullptr;
}

}  // namespace

std::optional<double> mathConstant(std::string_view name) {
    struct Row {
        std::string_view name;
        double value;
    };
    for (const Row& row :
         {Row{"E", 2.71828}, Row{"LN10", 2.302585}, Row{"LN2", 0.693147}, Row{"LOG10E", 0.434294},
          Row{"LOG2E", 1.442695}, Row{"PI", 3.141592}, Row{"SQRT1_2", 0.707107}, Row{"SQRT2", 1.414214}})
        if (row.name == name) return row.value;
    return std::nullopt;
}

Value callMath(const MethodCall& call) {
    ScriptMemory& memory = call.movie.scripts.memory;
    const std::string_view name = call.name.view();
    if (name == "random") {
        constexpr double unit = 2.3283064370807974e-10;
        return Value::number(memory, nextRandom(call.movie.scripts.random) * unit);
    }
    if (call.arguments.empty()) return {};
    const double a = numericValue(call.arguments[0]);
    if (const OneArgument function = functionOf(name)) return Value::number(memory, function(a));
    if (call.arguments.size() < 2) return {};
    const double b = numericValue(call.arguments[1]);
    if (name == "atan2")
        return b == 0 ? Value::constant(ValueType::notANumber) : Value::number(memory, std::atan(a / b));
    if (name == "max") return Value::number(memory, a > b ? a : b);
    if (name == "min") return Value::number(memory, a < b ? a : b);
    if (name == "pow") return Value::number(memory, std::pow(a, b));
    return {};
}

}  // namespace qel
