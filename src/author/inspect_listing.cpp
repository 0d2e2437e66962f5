#include "author/inspect_listing.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "author/action_listing.h"

namespace qel::author::inspector {
namespace {

void addField(Listing& list, const char* name, FieldKind kind, std::int64_t value, std::size_t count = 0) {
    list.out.fields.push_back({name, value, static_cast<std::uint32_t>(count), kind});
}

void addBytes(Listing& list, const char* name, FieldKind kind, std::string_view bytes) {
    if (list.full) return;
    addField(list, name, kind, static_cast<std::int64_t>(list.out.texts.size()), bytes.size());
    list.out.texts += bytes;
}

void addProblem(Listing& list, std::uint32_t part, Severity severity, std::size_t offset, const char* format,
                std::va_list arguments) {
    ++(severity == Severity::error ? list.out.errorCount : list.out.warningCount);
    if (list.out.problems.size() >= maxListedProblems) return;
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    list.out.problems.push_back({part, static_cast<std::uint32_t>(offset), severity, text});
}

std::uint32_t lastPart(const Listing& list) {
    return list.out.parts.empty() ? 0 : static_cast<std::uint32_t>(list.out.parts.size() - 1);
}

}  // namespace

PartScope::PartScope(Listing& list, const char* name, int type, std::size_t offset, std::size_t length) : list_(list) {
    if (list.out.parts.size() >= maxInspectedParts && !list.full) {
        addError(list, offset, "more than %u parts: what follows is not looked at", unsigned{maxInspectedParts});
        list.full = true;
    }
    if (!list.full) {
        const std::size_t atMost = list.content.size() - std::min(offset, list.content.size());
        list.out.parts.push_back(
            {name, static_cast<std::uint32_t>(offset), static_cast<std::uint32_t>(std::min(length, atMost)),
             static_cast<std::uint32_t>(list.out.fields.size()), static_cast<std::int16_t>(type), list.depth});
    }
    index_ = lastPart(list);
    ++list.depth;
}

void addNumber(Listing& list, const char* name, std::int64_t value) {
    if (!list.full) addField(list, name, FieldKind::number, value);
}

void addHex(Listing& list, const char* name, std::uint32_t value) {
    if (!list.full) addField(list, name, FieldKind::hex, value);
}

void addYesNo(Listing& list, const char* name, bool value) {
    if (!list.full) addField(list, name, FieldKind::yesNo, value);
}

void addWord(Listing& list, const char* name, std::string_view word) { addBytes(list, name, FieldKind::word, word); }

void addText(Listing& list, const char* name, std::string_view text) { addBytes(list, name, FieldKind::text, text); }

void addCode(Listing& list, const char* name, std::span<const std::uint8_t> code) {
    if (list.full || !list.wishes.actions || code.empty()) return;
    const std::size_t left = maxListedCode - list.out.codeListed;
    const std::string lines = listActions(code, left);
    list.out.codeListed += static_cast<std::uint32_t>(std::min(lines.size(), left));
    addBytes(list, name, FieldKind::lines, lines);
}

void addNumbers(Listing& list, const char* name, std::span<const std::int32_t> numbers) {
    if (list.full) return;
    if (list.out.numbers.size() + numbers.size() > maxInspectedNumbers) {
        addError(list, list.out.parts.empty() ? 0 : list.out.parts.back().offset,
                 "more than %u numbers in lists: what follows is not looked at", unsigned{maxInspectedNumbers});
        list.full = true;
        return;
    }
    addField(list, name, FieldKind::numbers, static_cast<std::int64_t>(list.out.numbers.size()), numbers.size());
    list.out.numbers.insert(list.out.numbers.end(), numbers.begin(), numbers.end());
}

void addMatrix(Listing& list, const char* name, const Matrix& m) {
    if (list.full) return;
    addField(list, name, FieldKind::matrix, static_cast<std::int64_t>(list.out.numbers.size()), 6);
    list.out.numbers.insert(list.out.numbers.end(), {m.a, m.b, m.c, m.d, m.tx, m.ty});
}

void addError(Listing& list, std::size_t offset, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    addProblem(list, lastPart(list), Severity::error, offset, format, arguments);
    va_end(arguments);
}

void addWarning(Listing& list, std::size_t offset, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    addProblem(list, lastPart(list), Severity::warning, offset, format, arguments);
    va_end(arguments);
}

void addProblemOf(Listing& list, std::uint32_t part, Severity severity, std::size_t offset, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    addProblem(list, part, severity, offset, format, arguments);
    va_end(arguments);
}

}  // namespace qel::author::inspector
