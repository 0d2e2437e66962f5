// Options that several commands have, so that they read and mean the same everywhere.
#pragma once

#include <string>
#include <vector>

#include "host/headless_run.h"
#include "player/player.h"

namespace CLI {
class App;
}

namespace qel::cli {

// --date, --tick and --tick-cost: where the virtual clock starts, and what reading it takes.
struct ClockOptions {
    std::string date = "2000-01-01T00:00:00.000";
    VirtualTime time;
};

// `options` must live until the command line has been parsed.
void addClockOptions(CLI::App& command, ClockOptions& options);

// For options that have been parsed: the date was checked then.
VirtualTime virtualTime(const ClockOptions& options);

// --key: MS:CODE, where CODE is a number or a name. The texts are checked when they are parsed.
void addKeyOption(CLI::App& command, std::vector<std::string>& keys);
std::vector<KeyPress> keyPresses(const std::vector<std::string>& keys);

// For the help of commands with --key: the names that it takes.
extern const char* const keyNamesHelp;

void addBudgetOption(CLI::App& command, PlayerOptions& player);

}  // namespace qel::cli
