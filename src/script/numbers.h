// Numbers to text and back, digit by digit as the device does it: every result is the same on every machine.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qel {

// 10 to the power n by repeated squaring; not exact for negative n, which both directions rely on.
double powerOfTen(std::int32_t n);

// The number that a text begins with; what follows it is ignored. Nothing where it begins with none.
std::optional<double> parseNumber(std::string_view text);

// A short text and the room for it.
struct NumberText {
    char characters[40] = {};
    std::size_t length = 0;
    std::string_view view() const { return {characters, length}; }
};

NumberText formatNumber(double number);  // 15 significant digits
NumberText formatInteger(std::int32_t number);

// Conversions of any double to integers. The fraction is cut off; numbers that are not finite give 0, others wrap.
double truncated(double number);
std::int32_t wrappedInt32(double number);
inline std::int32_t toInt32(double number) {
    constexpr double end = 2147483648.0;
    return number > -end && number < end ? static_cast<std::int32_t>(number) : wrappedInt32(number);
}
inline std::uint32_t toUint32(double number) { return static_cast<std::uint32_t>(toInt32(number)); }
inline std::uint16_t toUint16(double number) { return static_cast<std::uint16_t>(toUint32(number)); }

}  // namespace qel
