#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/command_line.h"
#include "cli/playback_errors.h"
#include "cli/playback_meter.h"
#include "cli/shared_options.h"

namespace qel::cli {
namespace {

struct BenchOptions {
    std::string file;
    std::uint64_t frames = 300;
    bool once = false, json = false;
    bool loop = true;             // spelled out for those who are used to the options of qel run
    std::uint32_t timeSlice = 0;  // likewise
    ClockOptions clock;
    PlayerOptions player;
};

// One line of the table and one field of the JSON object: the time that frames spent on these kinds of work.
struct Part {
    const char* name;
    std::vector<PlayerWork> works;
};
const Part parts[] = {
    {"reading", {PlayerWork::reading}},
    {"scripts", {PlayerWork::scripts}},
    {"drawing", {PlayerWork::drawing}},
    {"presenting", {PlayerWork::presenting}},
    {"other", {PlayerWork::loading, PlayerWork::finishing}},
};

Spread spreadOfTotals(const Measurement& measured) {
    std::vector<std::chrono::nanoseconds> totals;
    for (const FrameCost& cost : measured.frames) totals.push_back(cost.total());
    return spreadOf(std::move(totals));
}

Spread spreadOfPart(const Measurement& measured, const Part& part) {
    std::vector<std::chrono::nanoseconds> sums;
    for (const FrameCost& cost : measured.frames) {
        sums.emplace_back();
        for (const PlayerWork work : part.works) sums.back() += cost[work];
    }
    return spreadOf(std::move(sums));
}

// As in the report of `qel run`, where it has a name for it.
const char* endName(const Measurement& measured, const Ending& ending) {
    switch (measured.end) {
        case Measurement::End::enoughFrames: return "max-frames";
        case Measurement::End::idle: return "idle";
        case Measurement::End::stalled: return "stalled";
        case Measurement::End::playbackEnded: break;
    }
    return ending.kind == Ending::Kind::aborted ? "aborted" : "finished";
}

const char* endSentence(const Measurement& measured, const Ending& ending) {
    switch (measured.end) {
        case Measurement::End::enoughFrames: return nullptr;
        case Measurement::End::idle: return "The content stopped to wait for a key.";
        case Measurement::End::stalled:
            return "The content went on without presenting a frame for 10 minutes of its time.";
        case Measurement::End::playbackEnded: break;
    }
    return ending.kind == Ending::Kind::aborted ? "Playback was aborted." : "The content ended.";
}

double microseconds(std::chrono::nanoseconds duration) { return static_cast<double>(duration.count()) / 1000; }

void printTable(const BenchOptions& options, const Measurement& measured, const Ending& ending) {
    std::printf("%s: frames: %zu, passes: %llu\n", options.file.c_str(), measured.frames.size(),
                static_cast<unsigned long long>(measured.passes));
    if (const char* const sentence = endSentence(measured, ending))
        std::printf("%s %llu frames were asked for.\n", sentence, static_cast<unsigned long long>(options.frames));
    const auto row = [](const char* name, const Spread& spread) {
        std::printf("  %-12s %12.1f %12.1f %12.1f\n", name, spread.minimum, spread.median, spread.percentile95);
    };
    if (!measured.frames.empty()) {
        std::printf("\n  %-12s %12s %12s %12s\n", "microseconds", "minimum", "median", "95 %");
        row("a frame", spreadOfTotals(measured));
        for (const Part& part : parts) row(part.name, spreadOfPart(measured, part));
    }
    std::printf("\nloading: %.1f microseconds\n", microseconds(measured.loading));
    std::printf("budget: at most %u of %u bytes in use\n", measured.budgetPeak, options.player.budget);
}

void printJson(const BenchOptions& options, const Measurement& measured, const Ending& ending) {
    using Json = nlohmann::ordered_json;
    const auto spread = [&measured](const auto& of) -> Json {
        if (measured.frames.empty()) return nullptr;
        const Spread values = of();
        return {{"minimum", values.minimum}, {"median", values.median}, {"percentile95", values.percentile95}};
    };
    Json object = {{"file", options.file},
                   {"end", endName(measured, ending)},
                   {"frames", measured.frames.size()},
                   {"passes", measured.passes},
                   {"loading", microseconds(measured.loading)},
                   {"frame", spread([&] { return spreadOfTotals(measured); })}};
    for (const Part& part : parts) object[part.name] = spread([&] { return spreadOfPart(measured, part); });
    object["budget"] = options.player.budget;
    object["budgetPeak"] = measured.budgetPeak;
    // A file's name may be any bytes; the object is UTF-8.
    std::printf("%s\n", object.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
}

int bench(BenchOptions options) {
    options.player.loop = !options.once;
    HeadlessPlatform platform(virtualTime(options.clock));
    PlaybackMeter meter(platform, options.player, [] { return std::chrono::steady_clock::now().time_since_epoch(); });
    const Measurement measured = meter.measure(options.file, options.frames);
    const Session& session = meter.session();
    (options.json ? printJson : printTable)(options, measured, session.ending());
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        throw CommandError(badUsage, "the result cannot be written to standard output");
    if (session.ending().kind == Ending::Kind::aborted) throw CommandError(failed, abortMessage(options.file, session));
    return success;
}

}  // namespace

void addBenchCommand(CLI::App& app, int& status) {
    CLI::App* const command =
        app.add_subcommand("bench", "Play content as fast as this machine can, and tell what its frames cost");
    const auto options = std::make_shared<BenchOptions>();
    command->add_option("FILE", options->file, "the content")->required();
    command->add_option("--frames", options->frames, "measure that many presented frames")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1000000}))
        ->type_name("N")
        ->capture_default_str();
    CLI::Option* const once =
        command->add_flag("--once", options->once, "stop when the content ends instead of playing it again");
    command->add_flag("--loop", options->loop, "play the content again until the frames are there (the default)")
        ->excludes(once);
    command->add_flag("--json", options->json, "write one JSON object instead of a table");
    addBudgetOption(*command, options->player);
    command->add_option("--time-slice", options->timeSlice, "milliseconds that one step may take; see below");
    addClockOptions(*command, options->clock);
    command->footer(
        "Times are real, in microseconds. The content sees a virtual clock on which work takes no time, so that it is\n"
        "never late and drops no frame. A frame's time is all work since the frame before it:\n"
        "  reading     records of the timeline, and the changes that they make\n"
        "  scripts     actions, keys and commands\n"
        "  drawing     pacing, finding what has changed, drawing it\n"
        "  presenting  overlays, handing the frame over (nothing is shown or written)\n"
        "  other       ending one pass and beginning the next\n"
        "Each line has its own median, so the lines need not add up. Loading is opening the content, up to where its\n"
        "first frame begins. A time slice is taken and changes nothing: the player gives way behind every piece of\n"
        "work here, so that each can be measured.\n"
        "Fields of the JSON object: file, end (max-frames, finished, aborted, idle, or stalled: no frame for 10 "
        "minutes\n"
        "of the content's time), frames, passes, loading; frame, reading, scripts, drawing, presenting, other (each "
        "with\n"
        "minimum, median, percentile95; null when there was no frame); budget, budgetPeak (bytes).\n"
        "Exit status: 0 measured; 1 playback was aborted; 2 bad usage or a file that cannot be opened; 3 refused.");
    command->callback([options, &status] { status = runCommand("bench", [&] { return bench(*options); }); });
}

}  // namespace qel::cli
