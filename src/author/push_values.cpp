#include "author/push_values.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "author/action_forms.h"
#include "author/assembler.h"

namespace qel::author {
namespace {

constexpr std::string_view notANumberName = "NaN", infinityName = "Infinity", negativeInfinityName = "-Infinity";
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t quietNan = 0x7FF8'0000'0000'0000;

template <class Number>
std::optional<Number> parsed(std::string_view text, int base = 10) {
    Number number{};
    const char* const end = text.data() + text.size();
    std::from_chars_result result{};
    if constexpr (std::is_floating_point_v<Number>)
        result = std::from_chars(text.data(), end, number);
    else
        result = std::from_chars(text.data(), end, number, base);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

template <class Number>
std::optional<Number> parsedHex(std::string_view text) {
    return text.starts_with("0x") ? parsed<Number>(text.substr(2), 16) : std::nullopt;
}

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    return text.starts_with("0x") ? parsedHex<std::int64_t>(text) : parsed<std::int64_t>(text);
}

bool startsLikeANumber(std::string_view text) {
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    return text.size() > first && text[first] >= '0' && text[first] <= '9';
}

ByteWriter& type(ByteWriter& out, PushType type) { return out.u8(static_cast<std::uint8_t>(type)); }

void writeDouble(ByteWriter& out, std::uint64_t bits) {
    type(out, PushType::real).u32(static_cast<std::uint32_t>(bits >> 32)).u32(static_cast<std::uint32_t>(bits));
}

void writeSingle(ByteWriter& out, std::uint32_t bits) { type(out, PushType::single).u32(bits); }

// Digits make a number: with a final f a single one, with a point or an exponent a double one, else a whole one.
bool writeDigits(ByteWriter& out, std::string_view text, std::size_t line) {
    if (!startsLikeANumber(text)) return false;
    const bool isHex = text.starts_with("0x");
    if (!isHex && text.ends_with('f')) {
        const std::optional<float> number = parsed<float>(text.substr(0, text.size() - 1));
        if (!number) return false;
        writeSingle(out, std::bit_cast<std::uint32_t>(*number));
        return true;
    }
    if (!isHex && text.find_first_of(".e") != std::string_view::npos) {
        const std::optional<double> number = parsed<double>(text);
        if (!number) return false;
        writeDouble(out, std::bit_cast<std::uint64_t>(*number));
        return true;
    }
    const std::optional<std::int64_t> number = wholeNumber(text);
    if (!number) return false;
    const std::int64_t most = isHex ? 0xFFFFFFFF : std::numeric_limits<std::int32_t>::max();
    if (*number < std::numeric_limits<std::int32_t>::min() || *number > most)
        throw ListingError(
            line, std::string(text) + " is larger than a whole number of 32 bits: write " + std::string(text) + ".0");
    type(out, PushType::integer).u32(static_cast<std::uint32_t>(*number));
    return true;
}

bool writeConstant(ByteWriter& out, std::string_view text) {
    const auto plain = std::ranges::find(plainValueNames, text, &PlainValueName::name);
    if (plain != std::end(plainValueNames))
        type(out, plain->type);
    else if (text == "true" || text == "false")
        type(out, PushType::boolean).u8(text == "true");
    else if (text == notANumberName)
        writeDouble(out, quietNan);
    else if (text == infinityName || text == negativeInfinityName)
        writeDouble(out, std::bit_cast<std::uint64_t>(text == infinityName ? infinity : -infinity));
    else
        return false;
    return true;
}

bool writePrefixed(ByteWriter& out, std::string_view text, std::size_t line) {
    const auto has = [&](std::string_view prefix) { return text.starts_with(prefix); };
    const std::string number(text.substr(std::min(text.find(':') + 1, text.size())));
    const auto byte = [&] { return static_cast<std::uint8_t>(listedNumber({.text = number}, 0, 255, line)); };
    if (has(registerPrefix)) {
        type(out, PushType::registerValue).u8(byte());
    } else if (has(constantPrefix)) {
        type(out, PushType::constant).u8(byte());
    } else if (has(booleanPrefix)) {
        type(out, PushType::boolean).u8(byte());
    } else if (has(typePrefix)) {
        out.u8(byte());
    } else if (has(singlePrefix)) {
        const std::optional<std::uint32_t> bits = parsedHex<std::uint32_t>(number);
        if (!bits) return false;
        writeSingle(out, *bits);
    } else if (has(doublePrefix)) {
        const std::optional<std::uint64_t> bits = parsedHex<std::uint64_t>(number);
        if (!bits) return false;
        writeDouble(out, *bits);
    } else {
        return false;
    }
    return true;
}

// --- and back

template <class Number>
std::string shortest(Number number) {
    char digits[40];
    return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

std::string hex(std::string_view prefix, std::uint64_t bits) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "0x%llX", static_cast<unsigned long long>(bits));
    return std::string(prefix) + digits;
}

std::string singleText(std::uint32_t bits) {
    const auto number = std::bit_cast<float>(bits);
    return std::isfinite(number) ? shortest(number) + "f" : hex(singlePrefix, bits);
}

std::string doubleText(std::uint64_t bits) {
    const auto number = std::bit_cast<double>(bits);
    if (bits == quietNan) return std::string(notANumberName);
    if (std::isinf(number)) return std::string(number > 0 ? infinityName : negativeInfinityName);
    if (!std::isfinite(number)) return hex(doublePrefix, bits);
    const std::string digits = shortest(number);
    return digits.find_first_of(".e") == std::string::npos ? digits + ".0" : digits;
}

std::string byteText(std::string_view prefix, std::uint8_t byte) {
    return std::string(prefix) + std::to_string(unsigned{byte});
}

// The entries of a Push, one after another.
class EntryReader {
  public:
    explicit EntryReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool left() const { return at_ < bytes_.size(); }
    bool whole() const { return whole_; }

    std::string next() {
        const auto type = static_cast<PushType>(u8());
        switch (type) {
            case PushType::text: return text();
            case PushType::single: return singleText(u32());
            case PushType::null:
            case PushType::undefined:
                return std::string(std::ranges::find(plainValueNames, type, &PlainValueName::type)->name);
            case PushType::registerValue: return byteText(registerPrefix, u8());
            case PushType::boolean: {
                const std::uint8_t truth = u8();
                return truth > 1 ? byteText(booleanPrefix, truth) : truth ? "true" : "false";
            }
            case PushType::real: {
                const std::uint64_t high = u32();
                return doubleText(high << 32 | u32());
            }
            case PushType::integer: return std::to_string(static_cast<std::int32_t>(u32()));
            case PushType::constant: return byteText(constantPrefix, u8());
        }
        return byteText(typePrefix, static_cast<std::uint8_t>(type));
    }

  private:
    std::uint8_t u8() {
        if (at_ < bytes_.size()) return bytes_[at_++];
        whole_ = false;
        return 0;
    }
    std::uint32_t u32() {
        std::uint32_t value = 0;
        for (int shift = 0; shift < 32; shift += 8) value |= std::uint32_t{u8()} << shift;
        return value;
    }
    std::string text() {
        std::string bytes;
        while (const std::uint8_t byte = u8()) bytes += static_cast<char>(byte);
        return quotedText(bytes);
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
    bool whole_ = true;
};

}  // namespace

void writePushValue(ByteWriter& out, const ListingWord& word, std::size_t line) {
    if (word.kind == ListingWord::Kind::text) {
        type(out, PushType::text).text(word.text).u8(0);
        return;
    }
    const bool known =
        word.kind == ListingWord::Kind::plain &&
        (writeConstant(out, word.text) || writeDigits(out, word.text, line) || writePrefixed(out, word.text, line));
    if (!known)
        throw ListingError(line, "\"" + word.text +
                                     "\" is no value: 'text', 1, 1.5, 1.5f, true, false, null, undefined, NaN, "
                                     "Infinity, register:0 or constant:0");
}

std::int64_t listedNumber(const ListingWord& word, std::int64_t least, std::int64_t most, std::size_t line) {
    const std::optional<std::int64_t> number =
        word.kind == ListingWord::Kind::plain ? wholeNumber(word.text) : std::nullopt;
    if (!number || *number < least || *number > most)
        throw ListingError(line, "a whole number from " + std::to_string(least) + " to " + std::to_string(most) +
                                     " belongs here, not \"" + word.text + "\"");
    return *number;
}

bool listPushValues(std::span<const std::uint8_t> entries, std::string& text) {
    EntryReader reader(entries);
    while (reader.left()) text += " " + reader.next();
    return reader.whole();
}

}  // namespace qel::author
