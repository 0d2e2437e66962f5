#include "author/source_document.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace qel::author {
namespace {

constexpr std::size_t deepestNesting = 64;

// Where the parser stands in the text: it looks one character ahead behind a number, which may be a line break.
struct ReadPosition {
    std::size_t line = 1;
    std::size_t visibleLine = 1;  // of the last character that is no white space
};

// An iterator over the text that counts its lines.
class CountingIterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, ReadPosition* position) : at_(at), position_(position) {}
    reference operator*() const { return *at_; }
    CountingIterator& operator++() {
        if (*at_ == '\n')
            ++position_->line;
        else if (*at_ != ' ' && *at_ != '\t' && *at_ != '\r')
            position_->visibleLine = position_->line;
        ++at_;
        return *this;
    }
    CountingIterator operator++(int) {
        const CountingIterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const CountingIterator& a, const CountingIterator& b) { return a.at_ == b.at_; }

  private:
    const char* at_;
    ReadPosition* position_;
};

// Builds the tree from the parser's events.
class TreeBuilder : public nlohmann::json_sax<nlohmann::json> {
  public:
    TreeBuilder(SourceValue& root, const ReadPosition& position) : root_(root), position_(position) {}

    bool null() override { return add(SourceValue::Kind::null) != nullptr; }
    bool boolean(bool value) override {
        add(SourceValue::Kind::boolean)->boolean = value;
        return true;
    }
    bool number_integer(std::int64_t value) override { return number(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) override { return number(static_cast<double>(value)); }
    bool number_float(double value, const std::string&) override { return number(value); }
    bool string(std::string& value) override {
        add(SourceValue::Kind::text)->text = value;
        return true;
    }
    bool binary(nlohmann::json::binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(SourceValue::Kind::object); }
    bool start_array(std::size_t) override { return open(SourceValue::Kind::list); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(std::string& name) override {
        if (open_.back()->find(name))
            throw SourceError(position_.visibleLine, open_.back()->field, "\"" + name + "\" stands here twice");
        key_ = name;
        return true;
    }
    bool parse_error(std::size_t, const std::string& lastToken, const nlohmann::json::exception&) override {
        const bool atEnd = lastToken.empty();
        throw SourceError(
            position_.visibleLine, "",
            atEnd ? "the text ends too early" : "not understood near \"" + lastToken.substr(0, 40) + "\"");
    }

  private:
    SourceValue* add(SourceValue::Kind kind) {
        SourceValue* value = &root_;
        if (!open_.empty()) {
            SourceValue& parent = *open_.back();
            const bool inList = parent.kind == SourceValue::Kind::list;
            const std::string name = inList ? std::to_string(parent.items.size()) : key_;
            value = inList ? &parent.items.emplace_back() : &parent.members.emplace_back(SourceMember{key_, {}}).value;
            value->field = parent.field.empty() ? name : parent.field + "/" + name;
        }
        value->kind = kind;
        value->line = position_.visibleLine;
        return value;
    }
    bool number(double value) {
        add(SourceValue::Kind::number)->number = value;
        return true;
    }
    bool open(SourceValue::Kind kind) {
        SourceValue* value = add(kind);
        if (open_.size() == deepestNesting) fail(*value, "nested too deeply");
        open_.push_back(value);
        return true;
    }
    bool close() {
        open_.pop_back();
        return true;
    }

    SourceValue& root_;
    const ReadPosition& position_;
    std::vector<SourceValue*> open_;  // the lists and objects around the next value; a parent does not grow meanwhile
    std::string key_;
};

const char* nameOf(SourceValue::Kind kind) {
    switch (kind) {
        case SourceValue::Kind::null: return "null";
        case SourceValue::Kind::boolean: return "true or false";
        case SourceValue::Kind::number: return "a number";
        case SourceValue::Kind::text: return "a text";
        case SourceValue::Kind::list: return "a list";
        case SourceValue::Kind::object: return "an object";
    }
    return "";
}

void expect(const SourceValue& value, SourceValue::Kind kind) {
    if (value.kind != kind)
        fail(value, std::string("this is ") + nameOf(value.kind) + ", but " + nameOf(kind) + " belongs here");
}

}  // namespace

const SourceValue* SourceValue::find(std::string_view name) const {
    const auto found = std::ranges::find(members, name, &SourceMember::name);
    return found == members.end() ? nullptr : &found->value;
}

void fail(const SourceValue& value, const std::string& message) { throw SourceError(value.line, value.field, message); }

SourceValue parseSource(std::string_view text) {
    SourceValue root;
    ReadPosition position;
    TreeBuilder builder(root, position);
    const CountingIterator begin(text.data(), &position), end(text.data() + text.size(), &position);
    constexpr bool strict = true, ignoreComments = true;
    nlohmann::json::sax_parse(begin, end, &builder, nlohmann::json::input_format_t::json, strict, ignoreComments);
    return root;
}

const std::string& textOf(const SourceValue& value) {
    expect(value, SourceValue::Kind::text);
    return value.text;
}

bool booleanOf(const SourceValue& value) {
    expect(value, SourceValue::Kind::boolean);
    return value.boolean;
}

double numberOf(const SourceValue& value) {
    expect(value, SourceValue::Kind::number);
    return value.number;
}

std::int64_t integerOf(const SourceValue& value, std::int64_t least, std::int64_t most) {
    const double number = numberOf(value);
    if (number != std::floor(number) || number < static_cast<double>(least) || number > static_cast<double>(most))
        fail(value, "a whole number from " + std::to_string(least) + " to " + std::to_string(most) + " belongs here");
    return static_cast<std::int64_t>(number);
}

const std::vector<SourceValue>& listOf(const SourceValue& value) {
    expect(value, SourceValue::Kind::list);
    return value.items;
}

const std::vector<SourceMember>& membersOf(const SourceValue& value) {
    expect(value, SourceValue::Kind::object);
    return value.members;
}

const SourceValue& memberOf(const SourceValue& object, std::string_view name) {
    expect(object, SourceValue::Kind::object);
    const SourceValue* member = object.find(name);
    if (!member) fail(object, "\"" + std::string(name) + "\" is missing");
    return *member;
}

SourcePaint paintOf(const SourceValue& value) {
    const std::string& text = textOf(value);
    const bool hex =
        text.size() > 1 && text[0] == '#' && text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
    if (!hex || (text.size() != 7 && text.size() != 9))
        fail(value, "\"" + text + "\" is no colour; write #rrggbb or #rrggbbaa");
    const auto digits = static_cast<std::uint32_t>(std::stoul(text.substr(1), nullptr, 16));
    if (text.size() == 7) return {digits, 255};
    return {digits >> 8, static_cast<std::uint8_t>(digits & 0xFF)};
}

std::uint32_t colourOf(const SourceValue& value) {
    if (textOf(value).size() == 9) fail(value, "this colour is always opaque; write #rrggbb");
    return paintOf(value).colour;
}

void allowOnly(const SourceValue& object, std::span<const std::string_view> names) {
    for (const auto& [name, member] : membersOf(object))
        if (std::ranges::find(names, name) == names.end()) fail(member, "nothing is called \"" + name + "\" here");
}

}  // namespace qel::author
