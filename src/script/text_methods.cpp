#include "script/text_methods.h"

#include <algorithm>

#include "movie/movie.h"
#include "script/conversions.h"
#include "script/numbers.h"
#include "script/script_state.h"

namespace qel {
namespace {

// An argument as a whole number.
std::int32_t indexAt(Arguments arguments, std::size_t i) { return toInt32(numericValue(arguments[i])); }

Value piece(const MethodCall& call, std::string_view text, std::int64_t begin, std::int64_t end) {
    if (begin >= end) return Value::text(call.movie.scripts.memory, std::string_view());
    return Value::text(call.movie.scripts.memory,
                       text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)));
}

// A position counted from the end where it is negative.
std::int64_t fromEitherEnd(std::int64_t index, std::int64_t length) {
    if (index > length) return length;
    if (index >= 0) return index;
    return index >= -length ? length + index : 0;
}

Value charAt(const MethodCall& call, std::string_view text) {
    if (call.arguments.empty()) return {};
    const std::int32_t i = indexAt(call.arguments, 0);
    if (i < 0 || static_cast<std::size_t>(i) >= text.size()) return {};
    const auto byte = static_cast<std::uint8_t>(text[static_cast<std::size_t>(i)]);
    constexpr std::uint8_t lastTag = 12;
    if (byte <= lastTag) return Value::text(call.movie.scripts.memory, "a");
    return Value::text(call.movie.scripts.memory, text.substr(static_cast<std::size_t>(i), 1));
}

Value charCodeAt(const MethodCall& call, std::string_view text) {
    if (call.arguments.empty()) return {};
    const std::int32_t i = indexAt(call.arguments, 0);
    if (i < 0 || static_cast<std::size_t>(i) >= text.size()) return {};
    const auto code = static_cast<std::int8_t>(text[static_cast<std::size_t>(i)]);
    return Value::text(call.movie.scripts.memory, formatInteger(code).view());
}

Value concat(const MethodCall& call, const TextHold& text) {
    if (call.arguments.empty()) return {};
    TextHold joined = text;
    for (const Value& argument : call.arguments) {
        const TextHold more = toText(call.movie, argument);
        if (!more || !joined || call.movie.scripts.memory.actionsLeft == 0) return {};
        spendText(call.movie.scripts, joined.view().size() + more.view().size());
        joined = joinTexts(call.movie.scripts.memory, joined.view(), more.view());
    }
    return Value::text(call.movie.scripts.memory, std::move(joined));
}

double indexOf(const MethodCall& call, std::string_view text) {
    constexpr double notFound = -1;
    if (call.arguments.empty()) return notFound;
    const TextHold wanted = toText(call.movie, call.arguments[0]);
    std::size_t start = 0;
    if (call.arguments.size() > 1) {
        const std::int32_t given = indexAt(call.arguments, 1);
        if (given < 0 || static_cast<std::size_t>(given) >= text.size()) return notFound;
        start = static_cast<std::size_t>(given);
    }
    spendText(call.movie.scripts, text.size() * std::max<std::size_t>(wanted.view().size(), 1));
    const std::size_t found = text.find(wanted.view(), start);
    return found == std::string_view::npos ? notFound : static_cast<double>(found);
}

Value withCase(const MethodCall& call, std::string_view text, char from, char to, int by) {
    TextHold copy = makeText(call.movie.scripts.memory, text);
    if (!copy) return {};
    for (std::uint32_t i = 0; i < copy->length; ++i) {
        char& c = copy.get()->bytes[i];
        if (c >= from && c <= to) c = static_cast<char>(c + by);
    }
    return Value::text(call.movie.scripts.memory, std::move(copy));
}

}  // namespace

Value callTextMethod(const MethodCall& call) {
    ScriptMemory& memory = call.movie.scripts.memory;
    const TextHold hold(&call.object.asText());
    const std::string_view text = hold.view(), name = call.name.view();
    const auto length = static_cast<std::int64_t>(text.size());
    spendText(call.movie.scripts, text.size());
    constexpr int toLower = 'a' - 'A';
    if (name == "charAt") return charAt(call, text);
    if (name == "charCodeAt") return charCodeAt(call, text);
    if (name == "concat") return concat(call, hold);
    if (name == "indexOf") return Value::number(memory, indexOf(call, text));
    if (name == "toLowerCase") return withCase(call, text, 'A', 'Z', toLower);
    if (name == "toUpperCase") return withCase(call, text, 'a', 'z', -toLower);
    const bool cuts = name == "slice" || name == "substr" || name == "substring";
    if (!cuts) return {};
    if (call.arguments.size() < 2) return Value::number(memory, -1);
    const std::int64_t first = indexAt(call.arguments, 0), second = indexAt(call.arguments, 1);
    if (name == "slice") return piece(call, text, fromEitherEnd(first, length), fromEitherEnd(second, length));
    if (name == "substr") {
        const std::int64_t begin = fromEitherEnd(first, length);
        return piece(call, text, begin, std::min(begin + std::clamp<std::int64_t>(second, 0, length), length));
    }
    const std::int64_t one = std::clamp<std::int64_t>(first, 0, length);
    const std::int64_t other = std::clamp<std::int64_t>(second, 0, length);
    return piece(call, text, std::min(one, other), std::max(one, other));
}

Value callStringClass(const MethodCall& call) {
    if (call.name.view() != "fromCharCode" || call.arguments.empty()) return {};
    ScriptMemory& memory = call.movie.scripts.memory;
    PoolArray<char> bytes;
    if (failed(bytes.reserve(*memory.uncharged, static_cast<std::uint32_t>(call.arguments.size())))) {
        memory.exhausted = true;
        return {};
    }
    for (const Value& argument : call.arguments)
        bytes.appendReserved(static_cast<char>(static_cast<std::uint8_t>(toUint32(numericValue(argument)))));
    return Value::text(memory, std::string_view(bytes.begin(), bytes.size()));
}

}  // namespace qel
