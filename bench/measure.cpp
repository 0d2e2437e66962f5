#include "measure.h"

#include <algorithm>

namespace qel::bench {
namespace {

using std::chrono::nanoseconds;

double median(std::span<nanoseconds> costs) {
    const auto middle = costs.begin() + static_cast<std::ptrdiff_t>(costs.size() / 2);
    std::ranges::nth_element(costs, middle);
    return static_cast<double>(middle->count()) / 1000;
}

}  // namespace

double bestMedian(std::span<nanoseconds> costs) {
    constexpr std::size_t stretches = 8, leastCosts = 5;
    const std::size_t length = std::max(costs.size() / stretches, leastCosts);
    std::optional<double> best;
    for (std::span<nanoseconds> left = costs; left.size() >= length; left = left.subspan(length)) {
        const double cost = median(left.first(length));
        best = std::min(best.value_or(cost), cost);
    }
    return best ? *best : median(costs);
}

void printHeading(std::FILE* to, const char* title, std::initializer_list<const char*> columns) {
    std::fprintf(to, "\n%-22s", title);
    for (const char* column : columns) std::fprintf(to, " %11s", column);
    std::fprintf(to, "\n");
}

void printRowName(std::FILE* to, const std::string& name) { std::fprintf(to, "%-22s", name.c_str()); }

void printNumber(std::FILE* to, std::optional<double> value, int decimals) {
    if (value)
        std::fprintf(to, " %11.*f", decimals, *value);
    else
        std::fprintf(to, " %11s", "-");
}

std::optional<double> ratio(std::optional<double> of, std::optional<double> by) {
    if (!of || !by || *by == 0) return std::nullopt;
    return *of / *by;
}

}  // namespace qel::bench
