// How commands that play content say what went wrong, and with which status they leave.
#pragma once

#include <stdexcept>
#include <string>

#include "cli/command_line.h"
#include "host/session.h"

namespace qel::cli {

// A command that cannot go on: one line for the user, and the status to exit with. Thrown and caught within a command,
// never through the player.
class CommandError : public std::runtime_error {
  public:
    CommandError(ExitStatus status, const std::string& message) : std::runtime_error(message), status_(status) {}
    ExitStatus status() const { return status_; }

  private:
    ExitStatus status_;
};

// Runs a command's body: prints what it throws as "qel NAME: …" and answers the exit status.
template <class Body>
int runCommand(const char* name, Body body);
void printCommandError(const char* name, const char* message);

// Opens the content, or throws CommandError.
void openContent(Session& session, const std::string& file);
std::string refusalMessage(const std::string& file);

// One line on an aborted playback: the file, what was wrong, and which part of the content was read last.
std::string abortMessage(const std::string& file, const Session& session);

template <class Body>
int runCommand(const char* name, Body body) {
    try {
        return body();
    } catch (const CommandError& error) {
        printCommandError(name, error.what());
        return error.status();
    } catch (const std::exception& error) {
        printCommandError(name, error.what());
        return failed;
    }
}

}  // namespace qel::cli
