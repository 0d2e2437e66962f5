#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>

#include "cli/command_line.h"
#include "cli/gif_writer.h"
#include "cli/picture.h"
#include "cli/playback_errors.h"
#include "cli/shared_options.h"
#include "host/headless_run.h"

namespace qel::cli {
namespace {

struct RenderOptions {
    std::string file, output;
    std::uint64_t frame = 0;  // counted from 1; 0: the last
    std::uint64_t maximumFrames = 1000;
    std::uint32_t maximumMs = 600000;
    std::vector<std::string> keys;
    PlayerOptions player{.loop = false};
};

// Keeps the frame that was presented last.
class LastFrame : public SessionObserver {
  public:
    void eventRaised(const EventNotice& notice) override {
        if (notice.event == HostEvent::presentFrame)
            picture = copyFrame(*reinterpret_cast<const FrameRecord*>(notice.value));
    }
    std::optional<Picture> picture;
};

// Adds every frame to an animation, until there are enough or one cannot be written.
class Animation : public SessionObserver {
  public:
    Animation(GifWriter& writer, const HeadlessPlatform& clock, std::uint64_t maximumFrames)
        : writer_(writer), clock_(clock), maximumFrames_(maximumFrames) {}

    void eventRaised(const EventNotice& notice) override {
        if (notice.event != HostEvent::presentFrame || !written || frames == maximumFrames_) return;
        written = writer_.add(copyFrame(*reinterpret_cast<const FrameRecord*>(notice.value)), clock_.elapsedMs());
        ++frames;
        previousMs = std::exchange(lastMs, clock_.elapsedMs());
    }

    bool written = true;
    std::uint64_t frames = 0;
    std::uint64_t previousMs = 0, lastMs = 0;  // when the last two came

  private:
    GifWriter& writer_;
    const HeadlessPlatform& clock_;
    std::uint64_t maximumFrames_;
};

void throwIfAborted(const RenderOptions& options, const Session& session) {
    if (session.ending().kind == Ending::Kind::aborted) throw CommandError(failed, abortMessage(options.file, session));
}

int renderPng(const RenderOptions& options) {
    HeadlessPlatform platform;
    LastFrame last;
    const std::uint64_t wanted = options.frame != 0 ? options.frame : options.maximumFrames;
    Session session(platform, {.player = options.player, .maximumFrames = wanted}, &last);
    openContent(session, options.file);
    runToEnd(session, platform, {.keys = keyPresses(options.keys), .endAtMs = options.maximumMs});
    throwIfAborted(options, session);
    if (!last.picture || (options.frame != 0 && session.framesPresented() < options.frame)) {
        throw CommandError(failed, options.file + ": there is no frame " +
                                       std::to_string(std::max<std::uint64_t>(options.frame, 1)) +
                                       ": the content presented " + std::to_string(session.framesPresented()) + " in " +
                                       std::to_string(platform.elapsedMs()) + " ms");
    }
    if (!writePng(options.output, *last.picture)) throw CommandError(badUsage, options.output + ": cannot be written");
    return success;
}

// How long the last frame is shown: until playback ended; where that says nothing, as long as the frame before it.
std::uint64_t endOfLastFrame(const Animation& animation, RunEnd end, const HeadlessPlatform& platform) {
    constexpr std::uint64_t shortestMs = 100;
    if (end != RunEnd::idle && platform.elapsedMs() > animation.lastMs) return platform.elapsedMs();
    return animation.lastMs + std::max(shortestMs, animation.frames > 1 ? animation.lastMs - animation.previousMs : 0);
}

int renderGif(const RenderOptions& options) {
    HeadlessPlatform platform;
    GifWriter writer;
    Animation animation(writer, platform, options.maximumFrames);
    // One frame more than is written: when it comes, the last one's time is over.
    Session session(platform, {.player = options.player, .maximumFrames = options.maximumFrames + 1}, &animation);
    openContent(session, options.file);
    if (!writer.open(options.output)) throw CommandError(badUsage, options.output + ": cannot be opened for writing");
    try {
        const RunEnd end =
            runToEnd(session, platform, {.keys = keyPresses(options.keys), .endAtMs = options.maximumMs});
        throwIfAborted(options, session);
        if (animation.frames == 0) throw CommandError(failed, options.file + ": the content presented no frame");
        if (!animation.written || !writer.finish(endOfLastFrame(animation, end, platform)))
            throw CommandError(badUsage, options.output + ": cannot be written");
    } catch (...) {
        std::remove(options.output.c_str());  // half an animation is no result
        throw;
    }
    return success;
}

int render(const RenderOptions& options) {
    const std::string extension =
        CLI::detail::to_lower(options.output.substr(std::max<std::size_t>(options.output.size(), 4) - 4));
    if (extension == ".png") return renderPng(options);
    if (extension != ".gif") throw CommandError(badUsage, options.output + ": the name must end in .png or .gif");
    if (options.frame != 0) throw CommandError(badUsage, "--frame is for PNG files");
    return renderGif(options);
}

}  // namespace

void addRenderCommand(CLI::App& app, int& status) {
    CLI::App* const command =
        app.add_subcommand("render", "Write one frame as a PNG file, or all as an animated GIF file");
    const auto options = std::make_shared<RenderOptions>();
    const auto positive = CLI::Range(std::uint64_t{1}, std::uint64_t{0xFFFFFFFF});
    command->add_option("FILE", options->file, "the content")->required();
    command->add_option("-o,--output", options->output, "the file to write, .png or .gif")
        ->required()
        ->type_name("FILE");
    command->add_option("--frame", options->frame, "for PNG: which presented frame, counted from 1 (the last)")
        ->check(positive)
        ->type_name("N");
    command->add_option("--max-frames", options->maximumFrames, "stop after that many frames")
        ->check(positive)
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--max-time", options->maximumMs, "stop after that much of the content's time")
        ->type_name("MS")
        ->capture_default_str();
    addKeyOption(*command, options->keys);
    addBudgetOption(*command, options->player);
    command->footer(
        std::string(keyNamesHelp) +
        "\nThe content plays once, on a virtual clock; frames with more than 256 colours lose some in a GIF file.\n"
        "Exit status: 0 written; 1 playback was aborted, or there is no such frame; 2 bad usage or a file that "
        "cannot be opened or written; 3 refused.");
    command->callback([options, &status] { status = runCommand("render", [&] { return render(*options); }); });
}

}  // namespace qel::cli
