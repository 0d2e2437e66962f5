#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "cli/command_line.h"
#include "cli/option_values.h"
#include "cli/picture.h"
#include "cli/playback_errors.h"
#include "cli/report_writer.h"
#include "cli/shared_options.h"
#include "host/headless_run.h"

namespace qel::cli {
namespace {

struct RunOptions {
    std::string file;
    std::string events = "-";
    bool services = false;
    std::string framesDirectory;
    std::string format = "png";
    std::vector<std::string> keys, faults;
    std::uint32_t stopAtMs = 0, maximumMs = 0;
    bool hasStop = false, hasMaximum = false;
    ClockOptions clock;
    SessionOptions session{.player = {.loop = false}};
};

// Writes each presented frame to a file of its own; passes everything on to the report.
class RunObserver : public SessionObserver {
  public:
    RunObserver(ReportWriter& report, const RunOptions& options) : report_(report), options_(options) {}

    void eventRaised(const EventNotice& notice) override {
        report_.eventRaised(notice);
        if (notice.event != HostEvent::presentFrame || options_.framesDirectory.empty() || !failedPath_.empty()) return;
        char name[40];
        std::snprintf(name, sizeof name, "frame-%06llu.%s", ++frames_, options_.format.c_str());
        const std::string path = (std::filesystem::path(options_.framesDirectory) / name).string();
        const Picture picture = copyFrame(*reinterpret_cast<const FrameRecord*>(notice.value));
        if (picture.width == 0 || picture.height == 0) return;  // a stage of no size has no picture
        if (!(options_.format == "png" ? writePng(path, picture) : writeRaw(path, picture))) failedPath_ = path;
    }
    void serviceCalled(const ServiceCall& call) override { report_.serviceCalled(call); }

    const std::string& failedPath() const { return failedPath_; }  // the first frame that could not be written

  private:
    ReportWriter& report_;
    const RunOptions& options_;
    unsigned long long frames_ = 0;
    std::string failedPath_;
};

Schedule makeSchedule(const RunOptions& options) {
    Schedule schedule{.keys = keyPresses(options.keys)};
    if (options.hasStop) schedule.stopAtMs = options.stopAtMs;
    if (options.hasMaximum) schedule.endAtMs = options.maximumMs;
    return schedule;
}

const char* endingName(RunEnd end, const Ending& ending) {
    switch (end) {
        case RunEnd::timeReached: return "max-time";
        case RunEnd::idle: return "idle";
        case RunEnd::playbackEnded: break;
    }
    switch (ending.kind) {
        case Ending::Kind::finished: return "finished";
        case Ending::Kind::aborted: return "aborted";
        case Ending::Kind::none:
        case Ending::Kind::ended: break;
    }
    return "max-frames";  // nobody else ends this session
}

// Plays the content; the report has its last line when this returns or throws, unless the content could not be opened.
int playAndReport(const RunOptions& options, std::ostream& out) {
    HeadlessPlatform platform(virtualTime(options.clock));
    ReportWriter report(out, platform, options.services);
    RunObserver observer(report, options);
    Session session(platform, options.session, &observer);
    switch (session.open(options.file)) {
        case OpenResult::opened: break;
        case OpenResult::cannotOpen: throw CommandError(badUsage, options.file + ": cannot be opened for reading");
        case OpenResult::outOfMemory:
        case OpenResult::refused: report.end("refused"); throw CommandError(refused, refusalMessage(options.file));
    }
    const RunEnd end = runToEnd(session, platform, makeSchedule(options));
    report.end(endingName(end, session.ending()));
    if (!observer.failedPath().empty()) throw CommandError(badUsage, observer.failedPath() + ": cannot be written");
    if (session.ending().kind == Ending::Kind::aborted) throw CommandError(failed, abortMessage(options.file, session));
    return success;
}

int run(RunOptions options) {
    for (const std::string& fault : options.faults) addFault(options.session.faults, fault);
    if (!options.framesDirectory.empty()) {
        std::error_code error;
        std::filesystem::create_directories(options.framesDirectory, error);
        if (!std::filesystem::is_directory(options.framesDirectory, error))
            throw CommandError(badUsage, options.framesDirectory + ": cannot be made a directory");
    }
    if (options.events == "-") {
        const int status = playAndReport(options, std::cout);
        if (!std::cout) throw CommandError(badUsage, "the report cannot be written to standard output");
        return status;
    }
    std::ofstream file(options.events, std::ios::binary);
    if (!file) throw CommandError(badUsage, options.events + ": cannot be opened for writing");
    const int status = playAndReport(options, file);
    file.close();
    if (!file) throw CommandError(badUsage, options.events + ": cannot be written");
    return status;
}

const CLI::Validator isFault{[](std::string& text) {
                                 Faults ignored;
                                 return addFault(ignored, text) ? std::string() : "no such fault: " + text;
                             },
                             "KIND"};

}  // namespace

void addRunCommand(CLI::App& app, int& status) {
    CLI::App* const command = app.add_subcommand("run",
                                                 "Play content without a window, on a virtual clock, and report "
                                                 "what a host sees as JSON Lines");
    const auto options = std::make_shared<RunOptions>();
    SessionOptions& session = options->session;
    command->add_option("FILE", options->file, "the content")->required();
    command->add_option("--events", options->events, "write the report there, - for standard output")
        ->capture_default_str();
    command->add_flag("--services", options->services, "report the service calls too");
    command->add_option("--frames", options->framesDirectory, "write every presented frame to DIR/frame-000001.EXT")
        ->type_name("DIR");
    command->add_option("--format", options->format, "of the frames: rgb565 (raw little-endian words) or png")
        ->check(CLI::IsMember({"rgb565", "png"}))
        ->capture_default_str();
    addKeyOption(*command, options->keys);
    const CLI::Option* const stop =
        command->add_option("--stop-at", options->stopAtMs, "ask the content to stop at virtual time MS")
            ->type_name("MS");
    command->add_option("--max-frames", session.maximumFrames, "end right after the N-th presented frame")
        ->check(CLI::Range(std::uint64_t{1}, ~std::uint64_t{0}))
        ->type_name("N");
    const CLI::Option* const maximum =
        command->add_option("--max-time", options->maximumMs, "end at virtual time MS")->type_name("MS");
    command->add_flag("--loop", session.player.loop, "play the content again when it ends");
    addBudgetOption(*command, session.player);
    command->add_option("--time-slice", session.player.timeSlice, "milliseconds that one step may take")
        ->capture_default_str();
    addClockOptions(*command, options->clock);
    command->add_option("--fault", options->faults, "open, temp, read:N, alloc:N or alloc-from:N; may be repeated")
        ->check(isFault)
        ->take_all()
        ->allow_extra_args(false);
    command->footer(
        std::string(keyNamesHelp) +
        "\nContent may go on for ever: see --max-frames and --max-time.\n"
        "Exit status: 0 finished, a limit reached, or idle; 1 aborted; 2 bad usage or a file that cannot be "
        "opened; 3 refused.");
    command->callback([options, stop, maximum, &status] {
        options->hasStop = stop->count() != 0;
        options->hasMaximum = maximum->count() != 0;
        status = runCommand("run", [&] { return run(*options); });
    });
}

}  // namespace qel::cli
