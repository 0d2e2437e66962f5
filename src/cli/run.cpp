#include <CLI/CLI.hpp>

#include "cli/command_line.h"

namespace qel::cli {

void addRunCommand(CLI::App& app, int& status) {
    app.add_subcommand("run")->callback([&status] { status = failed; });
}

}  // namespace qel::cli
