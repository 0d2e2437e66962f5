// All benchmarks in one program; those that draw end with a table of their own.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>

#include "drawing_bench.h"

int main(int argc, char** argv) try {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    qel::bench::registerDrawingBenchmarks();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    qel::bench::printDrawingSummary(stderr);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "qel_bench: %s\n", error.what());
    return 1;
}
