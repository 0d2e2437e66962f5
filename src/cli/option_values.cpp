#include "cli/option_values.h"

#include <algorithm>
#include <charconv>
#include <chrono>

#include "format/key_codes.h"

namespace qel::cli {
namespace {

template <class Number>
std::optional<Number> wholeNumber(std::string_view text) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

// Takes `digits` digits off the text, and `separator` before them unless it is 0.
std::optional<int> takeField(std::string_view& text, char separator, std::size_t digits) {
    if (separator != 0) {
        if (!text.starts_with(separator)) return std::nullopt;
        text.remove_prefix(1);
    }
    if (text.size() < digits) return std::nullopt;
    const std::optional<unsigned> value = wholeNumber<unsigned>(text.substr(0, digits));
    text.remove_prefix(digits);
    return value ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

}  // namespace

std::optional<std::int64_t> parseDate(std::string_view text) {
    using namespace std::chrono;
    const std::optional<int> y = takeField(text, 0, 4), m = takeField(text, '-', 2), d = takeField(text, '-', 2);
    if (!y || *y == 0 || !m || !d) return std::nullopt;
    const year_month_day day(year(*y), month(static_cast<unsigned>(*m)), std::chrono::day(static_cast<unsigned>(*d)));
    if (!day.ok()) return std::nullopt;
    const std::int64_t midnight = duration_cast<milliseconds>(sys_days(day).time_since_epoch()).count();
    if (text.empty()) return midnight;

    const std::optional<int> hour = takeField(text, 'T', 2), minute = takeField(text, ':', 2),
                             second = takeField(text, ':', 2);
    const std::optional<int> millisecond = text.empty() ? 0 : takeField(text, '.', 3);
    if (!hour || *hour > 23 || !minute || *minute > 59 || !second || *second > 59 || !millisecond || !text.empty())
        return std::nullopt;
    return midnight + ((*hour * 60 + *minute) * 60 + *second) * std::int64_t{1000} + *millisecond;
}

std::optional<KeyPress> parseKey(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == text.npos) return std::nullopt;
    const auto atMs = wholeNumber<std::uint32_t>(text.substr(0, colon));
    const std::string_view key = text.substr(colon + 1);
    const std::optional<std::uint8_t> named = keyCodeOf(key);
    const std::optional<std::uint8_t> code = named ? named : wholeNumber<std::uint8_t>(key);
    if (!atMs || !code) return std::nullopt;
    return KeyPress{.atMs = *atMs, .code = *code};
}

bool addFault(Faults& faults, std::string_view text) {
    if (text == "open") return faults.refuseContent = true;
    if (text == "temp") return faults.noTemporaryFile = true;
    const std::size_t colon = text.find(':');
    if (colon == text.npos) return false;
    const std::string_view kind = text.substr(0, colon);
    const auto number = wholeNumber<std::uint64_t>(text.substr(colon + 1));
    if (!number || *number == 0) return false;
    if (kind == "read") return faults.failedReads.push_back(*number), true;
    if (kind == "alloc") return faults.failedAllocations.push_back(*number), true;
    if (kind != "alloc-from") return false;
    const std::uint64_t before = faults.allocationsFailFrom;
    faults.allocationsFailFrom = before == 0 ? *number : std::min(before, *number);
    return true;
}

}  // namespace qel::cli
