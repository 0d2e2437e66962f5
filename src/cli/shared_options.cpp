#include "cli/shared_options.h"

#include <CLI/CLI.hpp>
#include <cstdint>

#include "cli/option_values.h"

namespace qel::cli {

void addClockOptions(CLI::App& command, ClockOptions& options) {
    const CLI::Validator isDate{[](std::string& text) {
                                    return parseDate(text) ? std::string()
                                                           : "not a date like 2000-01-01T00:00:00.000: " + text;
                                },
                                "DATE"};
    command.add_option("--date", options.date, "date and time at the start (UTC)")
        ->check(isDate)
        ->capture_default_str();
    command.add_option("--tick", options.time.tick, "tick count at the start, milliseconds")->capture_default_str();
    command.add_option("--tick-cost", options.time.tickCostUs, "what reading the tick count takes, microseconds")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{0xFFFFFFFF}))
        ->type_name("UINT")
        ->capture_default_str();
}

VirtualTime virtualTime(const ClockOptions& options) {
    VirtualTime time = options.time;
    time.startMs = *parseDate(options.date);
    return time;
}

const char* const keyNamesHelp =
    "Keys: a code from 0 to 255, or number-0 to number-9, left, right, up, down, select, ok, cancel, menu, send,\n"
    "end, reserved-0 to reserved-9. Plain digits are always a code: the key 5 is number-5.";

void addKeyOption(CLI::App& command, std::vector<std::string>& keys) {
    const CLI::Validator isKey{[](std::string& text) {
                                   return parseKey(text) ? std::string()
                                                         : "not a time and a key like 1500:select or 1500:155: " + text;
                               },
                               "MS:CODE"};
    command.add_option("--key", keys, "press a key, by code or name, at a virtual time; may be repeated")
        ->check(isKey)
        ->take_all()
        ->allow_extra_args(false);
}

std::vector<KeyPress> keyPresses(const std::vector<std::string>& keys) {
    std::vector<KeyPress> presses;
    for (const std::string& key : keys) presses.push_back(*parseKey(key));
    return presses;
}

void addBudgetOption(CLI::App& command, PlayerOptions& player) {
    command.add_option("--budget", player.budget, "bytes that the player may use")->capture_default_str();
}

}  // namespace qel::cli
