#include "cli/command_line.h"

#include <CLI/CLI.hpp>

namespace qel::cli {

int runCommandLine(int argc, const char* const* argv) {
    CLI::App app{"Plays, checks, converts and writes VIS, ZVIS, SAF, MSF and MSS content.", "qel"};
    app.require_subcommand(1);
    int status = success;
    addPlayCommand(app, status);
    addRenderCommand(app, status);
    addRunCommand(app, status);
    addInfoCommand(app, status);
    addBuildCommand(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? success : badUsage;
    }
    return status;
}

}  // namespace qel::cli
