#include <CLI/CLI.hpp>

#include "cli/command_line.h"

namespace qel::cli {

void addPlayCommand(CLI::App& app, int& status) {
    app.add_subcommand("play")->callback([&status] { status = failed; });
}

}  // namespace qel::cli
