#include <CLI/CLI.hpp>

#include "cli/command_line.h"

namespace qel::cli {

void addInfoCommand(CLI::App& app, int& status) {
    app.add_subcommand("info")->callback([&status] { status = failed; });
}

}  // namespace qel::cli
