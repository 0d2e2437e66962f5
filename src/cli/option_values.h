// Values of options as the command line writes them: dates, keys, faults.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "host/headless_run.h"

namespace qel::cli {

// "2000-01-01T00:00:00.000", the time or its milliseconds left out or not; the years 1 to 9999. In milliseconds since
// 1970-01-01. Nothing for texts of another form and days that no month has.
std::optional<std::int64_t> parseDate(std::string_view text);

// "MS:CODE": the code 0 to 255, or the name of a key.
std::optional<KeyPress> parseKey(std::string_view text);

// Adds "open", "temp", "read:N", "alloc:N" or "alloc-from:N" to the faults; false for anything else.
bool addFault(Faults& faults, std::string_view text);

}  // namespace qel::cli
