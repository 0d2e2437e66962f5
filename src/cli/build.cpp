#include <CLI/CLI.hpp>

#include "cli/command_line.h"

namespace qel::cli {

void addBuildCommand(CLI::App& app, int& status) {
    app.add_subcommand("build")->callback([&status] { status = failed; });
}

}  // namespace qel::cli
