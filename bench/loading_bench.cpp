// Loading a movie of 5,000 records: everything from the first byte to the first frame, most of it the definition scan.
#include <benchmark/benchmark.h>

#include "author/frame_items.h"
#include "author/movie_writer.h"
#include "host/headless_run.h"

namespace {

using namespace qel;

author::Bytes movieOf(std::int64_t records) {
    author::MovieFile movie;
    movie.properties.frameDuration(40).dictionarySize(static_cast<std::uint16_t>(records + 1));
    author::Outline outline;
    outline.style({.line = {}, .fill0 = 1, .fill1 = {}}).moveTo({0, 0}).lineTo({9, 0}).lineTo({9, 9}).lineTo({0, 0});
    for (std::int64_t id = 1; id <= records; ++id) {
        const auto number = static_cast<std::uint16_t>(id);
        movie.records.push_back(id % 2 == 1 ? author::solidFill(number, {.colour = 0xFF0000})
                                            : author::shape({.id = number,
                                                             .bounds = {0, 0, 9, 9},
                                                             .outline = outline,
                                                             .bitmapFills = {},
                                                             .gradientFills = {}}));
    }
    movie.records.push_back(author::frame(author::place(2, 0)));
    return visFile(movie);
}

void playFirstFrame(benchmark::State& state, const author::Bytes& content) {
    for (auto _ : state) {
        HeadlessPlatform platform;
        platform.provideContent("content", content);
        SessionOptions options;
        options.maximumFrames = 1;
        Session session(platform, options);
        if (session.open("content") == OpenResult::opened) runToEnd(session, platform, {});
        if (session.framesPresented() != 1) state.SkipWithError("the movie did not play");
    }
    state.counters["records/s"] =
        benchmark::Counter(static_cast<double>(state.range(0)), benchmark::Counter::kIsIterationInvariantRate);
}

void LoadAndScan(benchmark::State& state) { playFirstFrame(state, movieOf(state.range(0))); }
BENCHMARK(LoadAndScan)->Arg(5000)->Arg(10000)->Unit(benchmark::kMicrosecond);

void LoadCompressed(benchmark::State& state) { playFirstFrame(state, author::zvisFile(movieOf(state.range(0)))); }
BENCHMARK(LoadCompressed)->Arg(5000)->Unit(benchmark::kMicrosecond);

}  // namespace
