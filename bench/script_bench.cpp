#include "script_bench.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <vector>

#include "author/assembler.h"
#include "author/frame_items.h"
#include "author/movie_writer.h"
#include "host/headless_run.h"
#include "movie/movie.h"
#include "script/conversions.h"
#include "script/machine.h"
#include "script/scope.h"
#include "script_peers.h"
#include "script_programs.h"

namespace qel::bench {
namespace {

enum class Engine : std::uint8_t { ours, lua, duktape };
constexpr std::array<const char*, 3> engineNames{"ours", "lua", "duktape"};
constexpr std::size_t programCount = std::size(scriptPrograms);

struct Results {
    std::array<std::optional<double>, engineNames.size()> microseconds;  // the median
    std::optional<double>& operator[](Engine engine) { return microseconds[static_cast<std::size_t>(engine)]; }
};
std::array<Results, programCount>& results() {
    static std::array<Results, programCount> all;
    return all;
}

// The machine of a movie that plays, given a program as a list of its root timeline.
class Player : public ScriptPeer {
  public:
    explicit Player(const char* program) : session_(platform_, options()), code_(author::assembleActions(program)) {
        author::MovieFile movie;
        movie.width = movie.height = 8;
        movie.properties.frameDuration(40).dictionarySize(4);
        movie.records = {author::frame({}), author::frame({}), author::frame({})};
        platform_.provideContent("content", visFile(movie));
        if (session_.open("content") != OpenResult::opened) throw std::runtime_error("the movie does not open");
        while (session_.playing() && session_.framesPresented() == 0) {
            platform_.jumpTo(*platform_.timerDueUs());
            session_.timerFired();
        }
    }

    void run() override {
        const StateWord state = movie().state;
        const bool ran = queueActionList(movie(), code_, nullptr) == Result::done &&
                         runScripts(movie(), ScriptRun::frameActions) == Result::done;
        movie().state = state;
        if (!ran) throw std::runtime_error("the program failed");
    }

    double result() override { return numericValue(getVariable(movie(), makeName(movie().scripts.memory, "r"))); }

  private:
    static SessionOptions options() { return {.player = {.budget = 8'000'000, .timeSlice = 0}}; }
    Movie& movie() { return *session_.context().player->movie; }

    HeadlessPlatform platform_;
    Session session_;
    author::Bytes code_;
};

std::unique_ptr<ScriptPeer> makeEngine(Engine engine, const ScriptProgram& program) {
    switch (engine) {
        case Engine::ours: return std::make_unique<Player>(program.ours);
        case Engine::lua: return luaPeer(program.lua);
        case Engine::duktape: return duktapePeer(program.javaScript);
    }
    return nullptr;
}

double median(std::vector<double>& times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

void runProgram(benchmark::State& state, std::size_t number, Engine engine) try {
    using Clock = std::chrono::steady_clock;
    const ScriptProgram& program = scriptPrograms[number];
    const std::unique_ptr<ScriptPeer> runner = makeEngine(engine, program);
    std::vector<double> times;
    for (auto _ : state) {
        const Clock::time_point begin = Clock::now();
        runner->run();
        const std::chrono::duration<double> took = Clock::now() - begin;
        state.SetIterationTime(took.count());
        times.push_back(took.count() * 1e6);
    }
    if (runner->result() != program.result) throw std::runtime_error("the program's result is wrong");
    results()[number][engine] = median(times);
} catch (const std::exception& error) {
    state.SkipWithError(error.what());
}

void printNumber(std::FILE* to, std::optional<double> value, int decimals) {
    if (value)
        std::fprintf(to, " %11.*f", decimals, *value);
    else
        std::fprintf(to, " %11s", "-");
}

void printRatio(std::FILE* to, std::optional<double> of, std::optional<double> by) {
    printNumber(to, of && by ? std::optional(*of / *by) : std::nullopt, 2);
}

}  // namespace

void registerScriptBenchmarks() {
    for (std::size_t number = 0; number < programCount; ++number) {
        for (std::size_t engine = 0; engine < engineNames.size(); ++engine) {
            const std::string name = std::string("script/") + scriptPrograms[number].name + '/' + engineNames[engine];
            benchmark::RegisterBenchmark(
                name.c_str(),
                [number, engine](benchmark::State& state) { runProgram(state, number, static_cast<Engine>(engine)); })
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
        }
    }
}

void printScriptSummary(std::FILE* to) {
    const auto ran = [](const Results& of) {
        return std::ranges::any_of(of.microseconds, [](const auto& value) { return value.has_value(); });
    };
    if (std::ranges::none_of(results(), ran)) return;
    std::fprintf(to, "\nMedians of one run of a program, microseconds.\n%-10s %11s %11s %11s %11s %11s %11s %11s\n",
                 "program", "ours", "Lua", "Duktape", "ours/Lua", "ours/Dukt.", "aim", "ours/aim");
    for (std::size_t number = 0; number < programCount; ++number) {
        Results& of = results()[number];
        if (!ran(of)) continue;
        const double aim = scriptPrograms[number].aim;
        std::fprintf(to, "%-10s", scriptPrograms[number].name);
        for (const std::optional<double>& value : of.microseconds) printNumber(to, value, 0);
        printRatio(to, of[Engine::ours], of[Engine::lua]);
        printRatio(to, of[Engine::ours], of[Engine::duktape]);
        printNumber(to, aim, 0);
        printRatio(to, of[Engine::ours], aim);
        std::fprintf(to, "\n");
    }
}

}  // namespace qel::bench
