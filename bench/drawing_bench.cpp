// Drawing: every scene redrawn whole, frame by frame, by this player and right behind it by Cairo, so that both see the
// same machine. Each row also tells how far it is from the aim, and scenes come with half, all and twice their objects.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <map>

#include "bench/scene.h"
#include "bench/scene_cairo.h"
#include "bench/scene_movie.h"
#include "host/headless_platform.h"
#include "host/session.h"
#include "movie/drawing.h"
#include "movie/movie.h"

namespace {

using namespace qel;
using qel::bench::CairoScene;
using qel::bench::Scene;

// Microseconds a frame: what the fastest renderers of the field need, anti-aliased or compiled at run time included, as
// measured on one machine of 2 cores with 32-byte registers.
const std::map<std::string, double>& aims() {
    static const std::map<std::string, double> table{
        {"a_polys200_240x320", 60},    {"a_polys200_480x640", 130},    {"b_curves20_240x320", 60},
        {"b_curves20_480x640", 170},   {"c_gradients12_240x320", 75},  {"c_gradients12_480x640", 250},
        {"e_strokes500_240x320", 450}, {"e_strokes500_480x640", 1000}, {"f_layers10_240x320", 80},
        {"f_layers10_480x640", 320},
    };
    return table;
}

// A movie whose first frame stands on the screen: drawing it again and again is all that is measured.
class SceneOnScreen {
  public:
    explicit SceneOnScreen(const Scene& scene)
        : session_(platform_, {.player = {.budget = 64'000'000, .timeSlice = 0, .loop = false}}) {
        platform_.provideContent("content", bench::sceneMovie(scene));
        if (session_.open("content") != OpenResult::opened) return;
        while (session_.playing() && session_.framesPresented() == 0) {
            if (platform_.timerDueUs()) platform_.jumpTo(*platform_.timerDueUs());
            session_.timerFired();
        }
    }
    ~SceneOnScreen() { session_.end(); }

    bool playing() const { return session_.playing(); }

    // The whole screen: clearing, looking at every object, drawing.
    bool drawFrame() {
        Movie& movie = *session_.context().player->movie;
        movie.fullRedraw = true;
        if (failed(beginDrawing(movie))) return false;
        while (movie.state.at(Phase::pace, PaceStep::draw))
            if (failed(drawNextObject(movie))) return false;
        return true;
    }

  private:
    HeadlessPlatform platform_;
    Session session_;
};

using Clock = std::chrono::steady_clock;

template <class Work>
double microseconds(Work work) {
    const Clock::time_point begin = Clock::now();
    work();
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double timeCairo(const Scene& scene) {
    constexpr int frames = 60;
    CairoScene theirs(scene);
    std::vector<double> times;
    for (int i = 0; i < frames; ++i) times.push_back(microseconds([&] { theirs.drawFrame(); }));
    return median(times);
}

void drawScene(benchmark::State& state, const Scene& scene, bool compare) {
    SceneOnScreen ours(scene);
    if (!ours.playing()) return state.SkipWithError("the scene does not play");
    std::vector<double> ourTimes;
    for (auto _ : state) {
        bool drawn = false;
        ourTimes.push_back(microseconds([&] { drawn = ours.drawFrame(); }));
        if (!drawn) return state.SkipWithError("a frame could not be drawn");
        state.SetIterationTime(ourTimes.back() / 1e6);
    }
    const double us = median(ourTimes);
    state.counters["median_us"] = us;
    if (!compare) return;
    const double cairoUs = timeCairo(scene);
    state.counters["cairo_us"] = cairoUs;
    state.counters["to_cairo"] = us / cairoUs;
    if (const auto aim = aims().find(scene.name); aim != aims().end()) state.counters["to_aim"] = us / aim->second;
}

// Scenes of bitmaps are left out: this player has no bitmaps.
bool isDrawn(const Scene& scene) {
    return std::none_of(scene.shapes.begin(), scene.shapes.end(),
                        [](const bench::SceneShape& shape) { return shape.fill && shape.fill->kind == "bitmap"; });
}

const bool registered = [] {
    for (const Scene& scene : bench::readScenes(QEL_SOURCE_DIR "/bench/scenes.json")) {
        if (!isDrawn(scene)) continue;
        const auto add = [](const std::string& name, const Scene& drawn, bool compare) {
            benchmark::RegisterBenchmark(name.c_str(),
                                         [=](benchmark::State& state) { drawScene(state, drawn, compare); })
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond)
                ->MinTime(0.3);
        };
        add("draw/" + scene.name, scene, true);
        add("draw/" + scene.name + "/half", bench::withPlacements(scene, 0.5), false);
        add("draw/" + scene.name + "/twice", bench::withPlacements(scene, 2), false);
    }
    return true;
}();

}  // namespace
