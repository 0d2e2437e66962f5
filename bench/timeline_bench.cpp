// The timeline at work, each scene with its cost as the count doubles. Movies play on the virtual clock, so a frame's
// time is that of the engine alone.
#include <benchmark/benchmark.h>

#include "author/assembler.h"
#include "author/frame_items.h"
#include "author/movie_writer.h"
#include "host/headless_run.h"
#include "movie/gotos.h"
#include "movie/movie.h"

namespace {

using namespace qel;
using author::Bytes;

constexpr std::uint16_t squareId = 10, clipId = 20;

constexpr Matrix at(std::int64_t x, std::int64_t y) {
    return {.a = fixedOne, .d = fixedOne, .tx = static_cast<std::int16_t>(x), .ty = static_cast<std::int16_t>(y)};
}

void add(Bytes& to, const Bytes& bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }

// 240 x 320 on white, with a square of 12 pixels.
author::MovieFile movieWithSquare() {
    author::MovieFile movie;
    movie.width = 240;
    movie.height = 320;
    movie.properties.frameDuration(40).dictionarySize(64);
    author::Outline outline;
    outline.style({.line = {}, .fill0 = 1, .fill1 = {}}).moveTo({0, 0}).lineTo({12, 0}).lineTo({12, 12});
    outline.lineTo({0, 12}).lineTo({0, 0});
    movie.records = {
        author::solidFill(1, {.colour = 0x2060C0}),
        author::shape(
            {.id = squareId, .bounds = {0, 0, 12, 12}, .outline = outline, .bitmapFills = {}, .gradientFills = {}})};
    return movie;
}

// A frame that places `count` instances of a character, each at a place of its own; depths are bytes, so the lowest
// are placed last.
Bytes placeMany(std::uint16_t id, std::int64_t count) {
    Bytes items;
    for (std::int64_t i = 0; i < count; ++i) {
        add(items, author::place(id, 0));
        add(items, author::move(0, at(i * 37 % 220, i * 53 % 300)));
    }
    return author::frame(items);
}

void playFrames(benchmark::State& state, const author::MovieFile& movie, std::int64_t frames) {
    const Bytes content = visFile(movie);
    for (auto _ : state) {
        HeadlessPlatform platform;
        platform.provideContent("content", content);
        Session session(platform, {.player = {.budget = 4'000'000, .loop = false}});
        if (session.open("content") == OpenResult::opened) runToEnd(session, platform, {});
        if (session.framesPresented() != static_cast<std::uint64_t>(frames)) state.SkipWithError("frames are missing");
    }
    state.counters["time/frame"] = benchmark::Counter(
        static_cast<double>(frames), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// A display list of so many objects, of which five move from frame to frame.
void FewOfManyObjectsMove(benchmark::State& state) {
    constexpr int frames = 300;
    author::MovieFile movie = movieWithSquare();
    movie.records.push_back(placeMany(squareId, state.range(0)));
    for (int frame = 1; frame < frames; ++frame) {
        Bytes items;
        for (int i = 0; i < 5; ++i)
            add(items, author::move(static_cast<std::uint8_t>(i * 11), at((frame * 3 + i * 40) % 220, i * 60)));
        movie.records.push_back(author::frame(items));
    }
    playFrames(state, movie, frames);
}
BENCHMARK(FewOfManyObjectsMove)->Arg(60)->Arg(120)->Arg(240)->Unit(benchmark::kMicrosecond);

// Clips that each move a square of their own in every frame.
void ClipsStepping(benchmark::State& state) {
    constexpr int frames = 100;
    author::MovieFile movie = movieWithSquare();
    Bytes timeline = author::frame(author::place(squareId, 0));
    for (std::int16_t x = 1; x < 20; ++x) add(timeline, author::frame(author::move(0, at(x, 0))));
    movie.records.push_back(author::sprite({.id = clipId, .frameCount = 20, .timeline = timeline}));
    movie.records.push_back(placeMany(clipId, state.range(0)));
    for (int frame = 1; frame < frames; ++frame) movie.records.push_back(author::frame({}));
    playFrames(state, movie, frames);
}
BENCHMARK(ClipsStepping)->Arg(100)->Arg(200)->Arg(400)->Unit(benchmark::kMicrosecond);

// Clips of which each runs an event of its own in every frame.
void ClipEvents(benchmark::State& state) {
    constexpr int frames = 100;
    author::MovieFile movie = movieWithSquare();
    movie.records.push_back(
        author::sprite({.id = clipId, .frameCount = 1, .timeline = author::frame(author::place(squareId, 0))}));
    const Bytes code = author::assembleActions(
        "Push 'this'\nGetVariable\nPush '_x' 'this'\nGetVariable\nPush '_x'\nGetMember\nIncrement\nSetMember");
    const std::vector<author::ClipHandler> handlers{{.onFrame = true, .code = code}};
    Bytes items;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        add(items, author::placeClip({clipId, 0, "clip" + std::to_string(i), handlers}));
        add(items, author::move(0, at(i * 37 % 120, i * 53 % 300)));
    }
    movie.records.push_back(author::frame(items));
    for (int frame = 1; frame < frames; ++frame) movie.records.push_back(author::frame({}));
    playFrames(state, movie, frames);
}
BENCHMARK(ClipEvents)->Arg(50)->Arg(100)->Unit(benchmark::kMicrosecond);

// A goto from the first frame over so many others, each of which moves three objects; nothing is drawn in between.
void GotoOverFrames(benchmark::State& state) {
    const auto frames = static_cast<std::uint16_t>(state.range(0));
    author::MovieFile movie = movieWithSquare();
    movie.frameCount = frames;
    movie.properties.keyFrameIndex(std::vector<author::Properties::KeyFrame>{{0, 40}});
    Bytes first;
    for (std::uint8_t i = 0; i < 3; ++i) add(first, author::place(squareId, i));
    movie.records.push_back(author::keyFrame(40, 0, first));
    for (int frame = 1; frame < frames; ++frame) {
        Bytes items;
        for (std::uint8_t i = 0; i < 3; ++i) add(items, author::move(i, at(frame % 220, i * 60)));
        movie.records.push_back(author::frame(items));
    }
    HeadlessPlatform platform;
    platform.provideContent("content", visFile(movie));
    Session session(platform, {.player = {.timeSlice = 0}});
    session.open("content");
    while (session.playing() && session.framesPresented() == 0) {
        platform.jumpTo(*platform.timerDueUs());
        session.timerFired();
    }
    for (auto _ : state) {
        Movie& playing = *session.context().player->movie;
        if (gotoRootFrame(playing, static_cast<std::uint16_t>(frames - 1)) != Result::done)
            state.SkipWithError("the goto failed");
        playing.workLeft = 1'000'000;
    }
    state.counters["time/frame"] = benchmark::Counter(
        static_cast<double>(frames), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(GotoOverFrames)->Arg(1000)->Arg(2000)->Unit(benchmark::kMicrosecond);

}  // namespace
