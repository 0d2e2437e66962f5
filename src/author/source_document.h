// A movie source as a tree of values that know where they stand, so that every complaint can name the line and the
// field. The text is JSON; // and /* */ comments are allowed.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel::author {

// What is wrong with a source, and where.
struct SourceError : std::runtime_error {
    std::size_t line;   // counted from 1
    std::string field;  // the names that lead there, "characters/ball/path"; empty for the whole source
    SourceError(std::size_t itsLine, std::string itsField, const std::string& message)
        : std::runtime_error(message), line(itsLine), field(std::move(itsField)) {}
};

struct SourceMember;

struct SourceValue {
    enum class Kind : std::uint8_t { null, boolean, number, text, list, object };

    Kind kind = Kind::null;
    std::size_t line = 1;
    std::string field;
    bool boolean = false;
    double number = 0;
    std::string text;
    std::vector<SourceValue> items;     // of a list
    std::vector<SourceMember> members;  // of an object, in the order of the source

    const SourceValue* find(std::string_view name) const;  // a member, or null
};

struct SourceMember {
    std::string name;
    SourceValue value;
};

[[noreturn]] void fail(const SourceValue& value, const std::string& message);

// Throws SourceError for text that is no JSON, a name that an object has twice, or nesting deeper than 64.
SourceValue parseSource(std::string_view text);

// Typed access. Each throws SourceError when the value is something else.
const std::string& textOf(const SourceValue& value);
bool booleanOf(const SourceValue& value);
double numberOf(const SourceValue& value);
std::int64_t integerOf(const SourceValue& value, std::int64_t least, std::int64_t most);
const std::vector<SourceValue>& listOf(const SourceValue& value);
const std::vector<SourceMember>& membersOf(const SourceValue& value);
const SourceValue& memberOf(const SourceValue& object, std::string_view name);  // one that must be there
std::uint32_t colourOf(const SourceValue& value);                               // "#rrggbb"
struct SourcePaint {
    std::uint32_t colour = 0;  // 0xRRGGBB
    std::uint8_t alpha = 255;
    friend bool operator==(const SourcePaint&, const SourcePaint&) = default;
};
SourcePaint paintOf(const SourceValue& value);  // "#rrggbb" or "#rrggbbaa"

// Complains about the first member whose name is not in the list.
void allowOnly(const SourceValue& object, std::span<const std::string_view> names);
inline void allowOnly(const SourceValue& object, std::initializer_list<std::string_view> names) {
    allowOnly(object, std::span(names.begin(), names.size()));
}

}  // namespace qel::author
