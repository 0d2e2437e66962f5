// All benchmarks in one program; those that draw and those that run scripts end with tables.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>

#include "drawing_bench.h"
#include "script_bench.h"

int main(int argc, char** argv) try {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    qel::bench::registerDrawingBenchmarks();
    qel::bench::registerScriptBenchmarks();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    qel::bench::printDrawingSummary(stderr);
    qel::bench::printScriptSummary(stderr);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "qel_bench: %s\n", error.what());
    return 1;
}
