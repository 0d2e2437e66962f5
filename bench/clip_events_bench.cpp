// Clips that each run code of their own in every frame, and what a frame costs as their count doubles.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "author/assembler.h"
#include "author/frame_items.h"
#include "author/movie_writer.h"
#include "measure.h"
#include "playing_movie.h"

namespace qel::bench {
namespace {

using author::Bytes;

constexpr std::uint16_t fillId = 1, squareId = 10, clipId = 20;
constexpr std::size_t frames = 200;

// What a clip's handler does, and how it shows that it has done so `runs` times.
struct Handler {
    const char* onLoad;  // a listing
    const char* onFrame;
    bool (*hasRun)(Movie& movie, ClipInstance& clip, std::size_t runs);
};

constexpr Handler counting{
    .onLoad = "Push 'x' 0\nSetVariable",
    .onFrame = R"(
    Push 'x' 'x'
    GetVariable
    Push 1
    Add2
    SetVariable
)",
    .hasRun =
        [](Movie& movie, ClipInstance& clip, std::size_t runs) {
            const Variable* x = clip.variables.find(*makeText(movie.scripts.memory, "x").get());
            return x && x->value.is(ValueType::number) && x->value.asNumber() == static_cast<double>(runs);
        },
};

// Property 0 is _x. The square moves, so it is drawn too.
constexpr Handler moving{
    .onLoad = "",
    .onFrame = R"(
    Push '' 0 '' 0
    GetProperty
    Push 1
    Add2
    SetProperty
)",
    .hasRun = [](Movie&, ClipInstance& clip,
                 std::size_t runs) { return clip.matrix.tx == static_cast<std::int16_t>(runs); },
};

// So many clips on a white stage, each with a square; all at the same place, so that counts differ in nothing else.
Bytes movieOf(const Handler& handler, std::int64_t count) {
    author::MovieFile movie;
    movie.properties.frameDuration(40).dictionarySize(64);
    author::Outline outline;
    outline.style({.line = {}, .fill0 = 1, .fill1 = {}}).moveTo({0, 0}).lineTo({12, 0}).lineTo({12, 12});
    outline.lineTo({0, 12}).lineTo({0, 0});
    const Bytes timeline = author::frame(author::place(squareId, 0));
    movie.records = {
        author::solidFill(fillId, {.colour = 0x2060C0}),
        author::shape(
            {.id = squareId, .bounds = {0, 0, 12, 12}, .outline = outline, .bitmapFills = {}, .gradientFills = {}}),
        author::sprite({.id = clipId, .frameCount = 1, .timeline = timeline}),
    };
    const std::vector<author::ClipHandler> handlers{
        {.onLoad = true, .code = author::assembleActions(handler.onLoad)},
        {.onFrame = true, .code = author::assembleActions(handler.onFrame)},
    };
    Bytes first;
    for (std::int64_t i = 0; i < count; ++i) {
        const Bytes clip = author::placeClip({.characterId = clipId, .depth = 0, .name = {}, .handlers = handlers});
        first.insert(first.end(), clip.begin(), clip.end());
    }
    movie.records.push_back(author::frame(first));
    while (movie.records.size() < 3 + frames) movie.records.push_back(author::frame({}));
    return visFile(movie);
}

// Every clip has run its handler once in each frame behind the one that placed it. When a frame has been presented, the
// next one has been read already, and waits for its time.
void checkClips(PlayingMovie& playing, const Handler& handler, std::int64_t count) {
    const std::size_t runs = std::min(playing.frameIndex(frames) + 1, frames - 1);
    for (DisplayObject* object = playing.movie().root.first; object; object = object->next) {
        ClipInstance* const clip = asClip(object);
        if (clip && !handler.hasRun(playing.movie(), *clip, runs)) throw std::runtime_error("a clip has not run");
        if (clip) --count;
    }
    if (count != 0) throw std::runtime_error("clips are missing");
}

void playClips(benchmark::State& state, const Handler& handler) try {
    PlayingMovie playing(movieOf(handler, state.range(0)));
    playing.playFrame();
    measure(state, "us/frame", [&] {
        if (playing.frameIndex(frames) == frames - 1) playing.playFrame();  // the first of a pass makes the clips
        const std::chrono::nanoseconds cost = playing.playFrame();
        checkClips(playing, handler, state.range(0));
        return cost;
    });
} catch (const std::exception& error) {
    state.SkipWithError(error.what());
}

void ClipsCountingFrames(benchmark::State& state) { playClips(state, counting); }
void ClipsMovingThemselves(benchmark::State& state) { playClips(state, moving); }
BENCHMARK(ClipsCountingFrames)->Arg(50)->Arg(100)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(ClipsMovingThemselves)->Arg(50)->Arg(100)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace qel::bench
