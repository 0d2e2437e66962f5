#include "script/numbers.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace qel {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// A cursor over a text that ends with zeros.
struct Cursor {
    std::string_view rest;
    char peek() const { return rest.empty() ? '\0' : rest.front(); }
    char take() {
        const char c = peek();
        if (!rest.empty()) rest.remove_prefix(1);
        return c;
    }
    bool takeSign() {
        const bool negative = peek() == '-';
        if (negative || peek() == '+') take();
        return negative;
    }
};

// A signed decimal integer; huge ones are kept within 32 bits, far beyond the digits that a text has room for.
std::optional<std::int32_t> parseExponent(Cursor& cursor) {
    constexpr std::int32_t most = 100'000'000;
    const bool negative = cursor.takeSign();
    if (!isDigit(cursor.peek())) return std::nullopt;
    std::int32_t value = 0;
    while (isDigit(cursor.peek())) {
        value = value * 10 + (cursor.take() - '0');
        if (value > most) value = most;
    }
    return negative ? -value : value;
}

// The digits of a number as they are written, with room for a carry in front.
struct Digits {
    NumberText text;
    double rest = 0;  // what is still to be written, its first digit in front of the point

    void put(char c) { text.characters[text.length++] = c; }
    int next() {
        const int digit = static_cast<int>(rest);
        rest = (rest - digit) * 10;
        return digit;
    }
    void putDigit() { put(static_cast<char>('0' + next())); }

    // Rounds by the digit behind the last. False: the carry went past the first.
    bool round() {
        if (next() < 5) return true;
        for (std::size_t at = text.length; at > 0; --at) {
            char& c = text.characters[at - 1];
            if (c == '.') continue;
            if (c == '-') return false;
            if (c != '9') {
                ++c;
                return true;
            }
            c = '0';
        }
        return false;
    }

    void dropTrailingZeros() {
        while (text.length > 0 && text.characters[text.length - 1] == '0') --text.length;
        if (text.length > 0 && text.characters[text.length - 1] == '.') --text.length;
    }
};

NumberText textOf(std::string_view characters) {
    NumberText text;
    for (const char c : characters) text.characters[text.length++] = c;
    return text;
}

// number / 10^exponent; powers that fall to zero are taken in two steps.
double scaledBy(double number, std::int32_t exponent) {
    const double power = powerOfTen(exponent);
    if (power != 0) return number / power;
    const std::int32_t half = exponent / 2;
    return number / powerOfTen(half) / powerOfTen(exponent - half);
}

// The decimal exponent of a number above 0, and the number with one digit in front of the point.
std::int32_t splitDecimal(double number, double& mantissa) {
    int binary = 0;
    std::frexp(number, &binary);
    constexpr double log10Of2 = 0.301029995663981;
    auto exponent = static_cast<std::int32_t>(std::round((binary - 1) * log10Of2));
    mantissa = scaledBy(number, exponent);
    if (mantissa < 1) {
        --exponent;
        mantissa = scaledBy(number, exponent);
    }
    if (mantissa >= 10) {
        mantissa /= 10;
        ++exponent;
    }
    return exponent;
}

constexpr int significantDigits = 15;

void putFixed(Digits& digits, std::int32_t exponent) {
    digits.put('0');  // takes the carry
    if (exponent < 0) {
        digits.put('0');
        digits.put('.');
        for (std::int32_t i = -exponent - 1; i > 0; --i) digits.put('0');
        for (int i = 0; i < significantDigits; ++i) digits.putDigit();
        return;
    }
    const int first = digits.next();
    if (first != 0) digits.put(static_cast<char>('0' + first));
    for (std::int32_t i = 0; i < exponent; ++i) digits.putDigit();
    digits.put('.');
    for (std::int32_t i = exponent + 1; i < significantDigits; ++i) digits.putDigit();
}

void putExponent(Digits& digits, std::int32_t exponent) {
    digits.put('e');
    const NumberText written = formatInteger(exponent);
    for (const char c : written.view()) digits.put(c);
}

void putWithExponent(Digits& digits, std::int32_t exponent) {
    const std::size_t start = digits.text.length;
    digits.putDigit();
    digits.put('.');
    for (int i = 1; i < significantDigits; ++i) digits.putDigit();
    if (!digits.round()) {  // all nines: the next power
        digits.text.length = start;
        digits.put('1');
        return putExponent(digits, exponent + 1);
    }
    digits.dropTrailingZeros();
    putExponent(digits, exponent);
}

}  // namespace

double powerOfTen(std::int32_t n) {
    double base = n < 0 ? 0.1 : 10.0, result = 1.0;
    for (auto bits = static_cast<std::uint32_t>(n < 0 ? -std::int64_t{n} : n); bits != 0; bits >>= 1) {
        if ((bits & 1) != 0) result *= base;
        base *= base;
    }
    return result;
}

std::optional<double> parseNumber(std::string_view text) {
    Cursor cursor{text};
    const bool negative = cursor.takeSign();
    if (!isDigit(cursor.peek()) && cursor.peek() != '.') return std::nullopt;
    double number = 0;
    std::int32_t exponent = 0;
    while (isDigit(cursor.peek())) number = number * 10 + (cursor.take() - '0');
    if (cursor.peek() == '.') {
        cursor.take();
        for (; isDigit(cursor.peek()); --exponent) number = number * 10 + (cursor.take() - '0');
    }
    if (cursor.peek() == 'e' || cursor.peek() == 'E') {
        cursor.take();
        const std::optional<std::int32_t> written = parseExponent(cursor);
        if (!written) return std::nullopt;
        exponent += *written;
    }
    return (negative ? -number : number) * powerOfTen(exponent);
}

NumberText formatNumber(double number) {
    if (std::isnan(number)) return textOf("NaN");
    if (std::isinf(number)) return textOf(number > 0 ? "Infinity" : "-Infinity");
    Digits digits;
    if (number < 0) {
        digits.put('-');
        number = -number;
    }
    if (number == 0) return textOf("0");
    const std::size_t start = digits.text.length;
    const std::int32_t exponent = splitDecimal(number, digits.rest);
    constexpr std::int32_t leastFixed = -5, mostFixed = significantDigits - 1;
    if (exponent < leastFixed || exponent > mostFixed) {
        putWithExponent(digits, exponent);
        return digits.text;
    }
    putFixed(digits, exponent);
    digits.round();
    digits.dropTrailingZeros();
    NumberText& text = digits.text;
    const bool placeholderShows =
        text.characters[start] != '0' || text.length == start + 1 || text.characters[start + 1] == '.';
    if (placeholderShows) return text;
    for (std::size_t i = start + 1; i < text.length; ++i) text.characters[i - 1] = text.characters[i];
    text.characters[--text.length] = 0;
    return text;
}

NumberText formatInteger(std::int32_t number) {
    NumberText text;
    const std::to_chars_result end = std::to_chars(text.characters, std::end(text.characters) - 1, number);
    text.length = static_cast<std::size_t>(end.ptr - text.characters);
    return text;
}

double truncated(double number) { return std::trunc(number); }

std::int32_t wrappedInt32(double number) {
    if (!std::isfinite(number)) return 0;
    constexpr double modulus = 4294967296.0;
    double wrapped = std::fmod(std::trunc(number), modulus);
    if (wrapped < 0) wrapped += modulus;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(wrapped));
}

}  // namespace qel
