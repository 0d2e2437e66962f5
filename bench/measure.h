// Taking the time of something that is done again and again, and the tables that say what came of it.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qel::bench {

// Microseconds: the least of the medians of several stretches, because others may be at work on the machine for a
// while. Changes the order of `costs`; there is at least one.
double bestMedian(std::span<std::chrono::nanoseconds> costs);

// Every iteration calls `once`, which says what the part of it that counts has cost. The library runs a benchmark with
// more and more iterations; the last run counts. `counter` is the name under which the library prints the median.
template <class Once>
double measure(benchmark::State& state, const char* counter, Once once) {
    std::vector<std::chrono::nanoseconds> costs;
    for (auto _ : state) {
        costs.push_back(once());
        state.SetIterationTime(std::chrono::duration<double>(costs.back()).count());
    }
    const double median = bestMedian(costs);
    state.counters[counter] = median;
    return median;
}

// Calls `work` and says how long that took.
template <class Work>
std::chrono::nanoseconds timed(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::steady_clock::now() - begin;
}

// A line of a table is what stands at its beginning and then numbers; a number that there is none of is a dash.
void printHeading(std::FILE* to, const char* title, std::initializer_list<const char*> columns);
void printRowName(std::FILE* to, const std::string& name);
void printNumber(std::FILE* to, std::optional<double> value, int decimals = 1);

std::optional<double> ratio(std::optional<double> of, std::optional<double> by);

}  // namespace qel::bench
