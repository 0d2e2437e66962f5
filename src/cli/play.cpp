#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>

#include "cli/command_line.h"
#include "cli/content_text.h"
#include "cli/playback_errors.h"
#include "host/desktop_platform.h"
#include "host/keyboard.h"
#include "host/session.h"

namespace qel::cli {
namespace {

struct PlayOptions {
    std::string file;
    int scale = 0;
    bool once = false;
};

// Content cannot open addresses or dial by itself: the user is told what it asks for.
void printRequest(const Ending& ending) {
    if (ending.reason == static_cast<std::uint32_t>(FinishReason::openAddress))
        std::printf("The content asks to open %s\n", printable(ending.text).c_str());
    if (ending.reason == static_cast<std::uint32_t>(FinishReason::callNumber))
        std::printf("The content offers to call %s\n", printable(ending.text).c_str());
}

int play(const PlayOptions& options) {
    std::string error;
    const auto platform = DesktopPlatform::open({.title = "KELBA QEL Player", .scale = options.scale}, error);
    if (!platform) {
        throw CommandError(badUsage, "there is no display to open a window on (" + error + "); use qel render " +
                                         options.file + " -o OUT.png, or qel run " + options.file);
    }
    Session session(*platform, {.player = {.loop = !options.once}});
    openContent(session, options.file);
    while (session.playing()) {
        const DesktopPlatform::Message message = platform->nextMessage();
        switch (message.kind) {
            case DesktopPlatform::Message::Kind::timer: session.timerFired(); break;
            case DesktopPlatform::Message::Kind::key: session.keyInput(message.keyCode); break;
            case DesktopPlatform::Message::Kind::pause: session.pause(); break;
            case DesktopPlatform::Message::Kind::resume: session.resume(); break;
            case DesktopPlatform::Message::Kind::quit: session.end(); break;
        }
    }
    if (session.ending().kind == Ending::Kind::aborted) throw CommandError(failed, abortMessage(options.file, session));
    if (session.ending().kind == Ending::Kind::finished) printRequest(session.ending());
    return success;
}

// The keys as the window's own help lists them.
std::string keyList() {
    std::string list = "Keys in the window:\n";
    for (const KeyboardHelp& row : keyboardHelp) {
        std::string keys(row.keys);
        keys.resize(std::max<std::size_t>(keys.size() + 1, 12), ' ');
        list += "  " + keys + std::string(row.meaning) + "\n";
    }
    return list;
}

}  // namespace

void addPlayCommand(CLI::App& app, int& status) {
    CLI::App* const command = app.add_subcommand("play", "Play content in a window");
    const auto options = std::make_shared<PlayOptions>();
    command->add_option("FILE", options->file, "the content")->required();
    command->add_option("--scale", options->scale, "window pixels for one of the content (as large as fits well)")
        ->check(CLI::Range(1, 16))
        ->type_name("N");
    command->add_flag("--once", options->once, "leave when the content ends instead of playing it again");
    command->footer(
        keyList() +
        "Closing the window leaves, too. Content that does not play again also ends with cancel.\n"
        "Exit status: 0 played; 1 playback was aborted; 2 bad usage, no display, or a file that cannot be opened; "
        "3 refused.");
    command->callback([options, &status] { status = runCommand("play", [&] { return play(*options); }); });
}

}  // namespace qel::cli
