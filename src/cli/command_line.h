// The qel command: one subcommand a file. Each registers itself with its options and, when it was chosen, leaves its
// exit status behind.
#pragma once

namespace CLI {
class App;
}

namespace qel::cli {

// The exit statuses that all subcommands share. Each subcommand's help names those it uses.
enum ExitStatus : int {
    success = 0,
    failed = 1,    // the content is broken, or playback was aborted
    badUsage = 2,  // or a file that cannot be opened
    refused = 3,   // the player does not play this content
};

// Parses the command line, runs the chosen subcommand and answers the exit status.
int runCommandLine(int argc, const char* const* argv);

void addBenchCommand(CLI::App& app, int& status);
void addBuildCommand(CLI::App& app, int& status);
void addInfoCommand(CLI::App& app, int& status);
void addPlayCommand(CLI::App& app, int& status);
void addRenderCommand(CLI::App& app, int& status);
void addRunCommand(CLI::App& app, int& status);

}  // namespace qel::cli
