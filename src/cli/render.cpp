#include <CLI/CLI.hpp>

#include "cli/command_line.h"

namespace qel::cli {

void addRenderCommand(CLI::App& app, int& status) {
    app.add_subcommand("render")->callback([&status] { status = failed; });
}

}  // namespace qel::cli
