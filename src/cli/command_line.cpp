#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <iostream>

namespace qel::cli {

int runCommandLine(int argc, const char* const* argv) {
    CLI::App app{"Plays, checks, converts and writes VIS, ZVIS and SAF content.", "qel"};
    app.set_version_flag("--version", "qel 0.1");
    app.require_subcommand(0, 1);
    app.footer("qel COMMAND --help tells more about a command.");
    int status = success;
    addPlayCommand(app, status);
    addRenderCommand(app, status);
    addRunCommand(app, status);
    addBenchCommand(app, status);
    addInfoCommand(app, status);
    addBuildCommand(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? success : badUsage;
    }
    if (app.get_subcommands().empty()) std::cout << app.help();
    return status;
}

}  // namespace qel::cli
