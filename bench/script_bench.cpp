#include "script_bench.h"

#include <algorithm>
#include <array>
#include <deque>
#include <stdexcept>

#include "measure.h"
#include "script_runner.h"

namespace qel::bench {
namespace {

enum Runner : std::uint8_t { ours, lua, duktape, runnerCount };
struct RunnerKind {
    const char* name;
    std::unique_ptr<ScriptRunner> (*make)(const ScriptProgram& program);
};
constexpr std::array<RunnerKind, runnerCount> runnerKinds{{
    {"ours", makePlayerRunner},
    {"lua", makeLuaRunner},
    {"duktape", makeDuktapeRunner},
}};

struct ProgramResults {
    ScriptProgram program;
    std::array<std::optional<double>, runnerCount> microseconds{};  // a run, the median
    std::string error = {};
};

// Referred to by the benchmarks' functions until the program ends.
std::deque<ProgramResults>& results() {
    static std::deque<ProgramResults> all;
    return all;
}

// A program that has not done its work has no cost worth knowing.
void checkResult(ScriptRunner& runner, const ScriptProgram& program) {
    const std::string result = runner.result();
    if (result == program.result) return;
    constexpr std::size_t most = 40;
    throw std::runtime_error(std::string(program.variable) + " is \"" + result.substr(0, most) + "\", not \"" +
                             std::string(program.result).substr(0, most) + '"');
}

void runProgram(benchmark::State& state, ProgramResults& of, Runner kind) try {
    const std::unique_ptr<ScriptRunner> runner = runnerKinds[kind].make(of.program);
    const auto once = [&] {
        runner->prepare();
        const std::chrono::nanoseconds cost = timed([&] { runner->run(); });
        checkResult(*runner, of.program);
        return cost;
    };
    once();  // the first has its memory to find
    of.microseconds[kind] = measure(state, "us/run", once);
} catch (const std::exception& error) {
    of.error = std::string(runnerKinds[kind].name) + ": " + error.what();
    state.SkipWithError(error.what());
}

bool wasRun(const ProgramResults& of) {
    const auto given = [](const std::optional<double>& value) { return value.has_value(); };
    return !of.error.empty() || std::ranges::any_of(of.microseconds, given);
}

}  // namespace

void registerScriptBenchmarks() {
    for (const ScriptProgram& program : scriptPrograms()) results().push_back({.program = program});
    for (ProgramResults& of : results()) {
        for (std::size_t kind = 0; kind < runnerCount; ++kind) {
            const std::string name = std::string("script/") + of.program.name + '/' + runnerKinds[kind].name;
            benchmark::RegisterBenchmark(
                name.c_str(),
                [&of, kind](benchmark::State& state) { runProgram(state, of, static_cast<Runner>(kind)); })
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
        }
    }
}

void printScriptSummary(std::FILE* to) {
    if (std::ranges::none_of(results(), wasRun)) return;
    printHeading(to, "microseconds a run", {"ours", "Lua", "Duktape", "ours/Lua", "ours/Dukt.", "aim", "ours/aim"});
    for (const ProgramResults& of : results()) {
        if (!wasRun(of)) continue;
        printRowName(to, of.program.name);
        for (const std::optional<double>& cost : of.microseconds) printNumber(to, cost);
        printNumber(to, ratio(of.microseconds[ours], of.microseconds[lua]), 2);
        printNumber(to, ratio(of.microseconds[ours], of.microseconds[duktape]), 2);
        printNumber(to, of.program.aim, 0);
        printNumber(to, ratio(of.microseconds[ours], of.program.aim), 2);
        std::fprintf(to, of.error.empty() ? "\n" : "  %s\n", of.error.c_str());
    }
}

}  // namespace qel::bench
