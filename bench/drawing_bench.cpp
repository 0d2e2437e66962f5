#include "drawing_bench.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "measure.h"
#include "scene_cairo.h"
#include "scene_file.h"
#include "scene_movie.h"
#include "scene_player.h"

namespace qel::bench {
namespace {

// What a frame may cost, microseconds: below the fastest renderers of the field, measured on one machine (2 cores,
// AVX2) drawing the same scenes. On another machine the ratio to Cairo says more.
struct Aim {
    const char* scene;
    double microseconds;
};
constexpr Aim aims[] = {
    {"a_polys200_240x320", 60},    {"a_polys200_480x640", 130},     // small polygons
    {"b_curves20_240x320", 60},    {"b_curves20_480x640", 170},     // large curved shapes
    {"c_gradients12_240x320", 75}, {"c_gradients12_480x640", 250},  // gradients
    {"d_bitmaps24_240x320", 110},  {"d_bitmaps24_480x640", 430},    // bitmap fills
    {"e_strokes500_240x320", 450}, {"e_strokes500_480x640", 1000},  // lines
    {"f_layers10_240x320", 80},    {"f_layers10_480x640", 320},     // translucent layers over the whole screen
    {"g_mix60_240x320", 200},      {"g_mix60_480x640", 550},        // moving objects of all kinds
};

// What is measured of each scene. Cairo transforms its paths in every frame, so that `moving` is the one to hold
// beside it.
enum class Row : std::uint8_t { moving, standing, cairo, movingHalf, movingDouble };
constexpr std::array<const char*, 5> rowNames{"moving", "standing", "cairo", "moving/half", "moving/double"};

struct SceneResults {
    SceneResults(Scene drawn, const std::vector<SceneBitmap>& itsBitmaps)
        : scene(std::move(drawn)), bitmaps(itsBitmaps) {}

    std::optional<double>& operator[](Row row) { return microseconds[static_cast<std::size_t>(row)]; }
    std::optional<double> operator[](Row row) const { return microseconds[static_cast<std::size_t>(row)]; }

    const Scene scene;
    const std::vector<SceneBitmap>& bitmaps;
    std::array<std::optional<double>, rowNames.size()> microseconds;  // a frame, the median
    std::optional<double> unlikeCairo;                                // share of pixels that clearly differ
    std::string error;
};

// Both are referred to by the benchmarks' functions until the program ends.
const SceneFile& sceneFile() {
    static const SceneFile scenes = readScenes(QEL_SOURCE_DIR "/bench/scenes.json");
    return scenes;
}
std::deque<SceneResults>& results() {
    static std::deque<SceneResults> all;
    return all;
}

// By more than an eighth of a channel's range: blending rounds at 16 bits here and at 32 bits there.
bool clearlyDiffer(std::uint16_t a, std::uint16_t b) {
    const auto differ = [&](unsigned shift, int mask) {
        return std::abs((a >> shift & mask) - (b >> shift & mask)) > mask / 8;
    };
    return differ(11, 0x1F) || differ(5, 0x3F) || differ(0, 0x1F);
}

// Edges are rounded differently; a scene that is not drawn, or drawn wrongly, shows as a large share.
double shareUnlikeCairo(const SceneResults& of, const ScenePlayer& player) {
    SceneCairo cairo(of.scene, of.bitmaps);
    cairo.drawFrame(player.frameIndex() % of.scene.frames.size());
    const std::vector<std::uint16_t> theirs = cairo.picture();
    const std::span<const std::uint16_t> ours = player.picture();
    std::size_t different = 0;
    for (std::size_t i = 0; i < theirs.size(); ++i) different += clearlyDiffer(ours[i], theirs[i]) ? 1 : 0;
    return static_cast<double>(different) / static_cast<double>(theirs.size());
}

Scene sceneOf(const SceneResults& of, Row row) {
    if (row == Row::movingHalf) return halved(of.scene);
    return row == Row::movingDouble ? doubled(of.scene) : of.scene;
}

void drawWithPlayer(benchmark::State& state, SceneResults& of, Row row) {
    ScenePlayer player(sceneMovie(sceneOf(of, row), row == Row::standing ? Motion::standing : Motion::moving));
    player.playFrame();  // the first has its memory to find
    of[row] = measure(state, "us/frame", [&] { return player.playFrame(); });
    if (row != Row::moving) return;
    of.unlikeCairo = shareUnlikeCairo(of, player);
    state.counters["unlike Cairo"] = *of.unlikeCairo;
}

void drawWithCairo(benchmark::State& state, SceneResults& of) {
    SceneCairo cairo(of.scene, of.bitmaps);
    std::size_t frame = 0;
    cairo.drawFrame(frame);
    of[Row::cairo] = measure(state, "us/frame", [&] {
        frame = (frame + 1) % of.scene.frames.size();
        return timed([&] { cairo.drawFrame(frame); });
    });
}

void drawScene(benchmark::State& state, SceneResults& of, Row row) try {
    if (row == Row::cairo)
        drawWithCairo(state, of);
    else
        drawWithPlayer(state, of, row);
} catch (const std::exception& error) {
    of.error = error.what();
    state.SkipWithError(error.what());
}

// --- the tables

std::optional<double> aimFor(const std::string& scene) {
    const Aim* const found = std::ranges::find(aims, scene, &Aim::scene);
    if (found == std::end(aims)) return std::nullopt;
    return found->microseconds;
}

bool wasDrawn(const SceneResults& of) {
    const auto given = [](const std::optional<double>& value) { return value.has_value(); };
    return !of.error.empty() || std::ranges::any_of(of.microseconds, given);
}

void printCosts(std::FILE* to) {
    printHeading(to, "microseconds a frame",
                 {"moving", "standing", "Cairo", "moving/Cairo", "aim", "moving/aim", "% unlike C."});
    for (const SceneResults& of : results()) {
        if (!wasDrawn(of)) continue;
        const std::optional<double> aim = aimFor(of.scene.name);
        printRowName(to, of.scene.name);
        printNumber(to, of[Row::moving]);
        printNumber(to, of[Row::standing]);
        printNumber(to, of[Row::cairo]);
        printNumber(to, ratio(of[Row::moving], of[Row::cairo]), 2);
        printNumber(to, aim);
        printNumber(to, ratio(of[Row::moving], aim), 2);
        printNumber(to, of.unlikeCairo ? std::optional(*of.unlikeCairo * 100) : std::nullopt, 2);
        std::fprintf(to, of.error.empty() ? "\n" : "  %s\n", of.error.c_str());
    }
}

void printGrowth(std::FILE* to) {
    printHeading(to, "as objects double", {"half", "whole", "double", "whole/half", "double/whole"});
    for (const SceneResults& of : results()) {
        if (!of[Row::moving]) continue;
        printRowName(to, of.scene.name);
        for (const Row row : {Row::movingHalf, Row::moving, Row::movingDouble}) printNumber(to, of[row]);
        printNumber(to, ratio(of[Row::moving], of[Row::movingHalf]), 2);
        printNumber(to, ratio(of[Row::movingDouble], of[Row::moving]), 2);
        std::fprintf(to, "\n");
    }
}

}  // namespace

void registerDrawingBenchmarks() {
    for (const Scene& scene : sceneFile().scenes) results().emplace_back(scene, sceneFile().bitmaps);
    for (SceneResults& of : results()) {
        for (std::size_t row = 0; row < rowNames.size(); ++row) {
            const std::string name = "drawScene/" + of.scene.name + '/' + rowNames[row];
            benchmark::RegisterBenchmark(
                name.c_str(), [&of, row](benchmark::State& state) { drawScene(state, of, static_cast<Row>(row)); })
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
        }
    }
}

void printDrawingSummary(std::FILE* to) {
    if (std::ranges::none_of(results(), wasDrawn)) return;
    std::fprintf(
        to,
        "\nMedians of the quietest stretch. Moving: every object is put to its place and drawn; standing: drawn "
        "only.\nThe last column is the share of pixels that clearly differ from Cairo's: above a few percent, "
        "the scene was not\ndrawn as it should be, and its cost says nothing.\n");
    printCosts(to);
    printGrowth(to);
}

}  // namespace qel::bench
