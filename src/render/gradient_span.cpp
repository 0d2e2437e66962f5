#include "render/gradient_span.h"

#include <algorithm>

#include "render/pixel_rows.h"
#include "render/radial_index.h"

namespace qel {
namespace {

constexpr std::int32_t lastIndex = 255;
constexpr std::size_t pieceLength = 256;  // pixels that are painted at a time

// Steps along the row. Points wrap at 32 bits.
struct Walk {
    SamplePoint at;
    std::int32_t stepU, stepV;
};

constexpr std::int32_t linearIndex(std::int32_t u) {
    constexpr std::int32_t middle = 128 * fixedOne;
    return std::clamp(add32(u, middle) >> 16, 0, lastIndex);
}

// The ramp's index for each of the next pixels of the walk.
void linearIndexes(Walk& walk, std::span<std::uint8_t> indexes) {
    std::int32_t u = walk.at.u;
    for (std::uint8_t& index : indexes) {
        index = static_cast<std::uint8_t>(linearIndex(u));
        u = add32(u, walk.stepU);
    }
    walk.at.u = u;
}

void radialIndexes(Walk& walk, RadialSearch& search, std::span<std::uint8_t> indexes) {
    for (std::uint8_t& index : indexes) {
        index = static_cast<std::uint8_t>(nextRadialIndex(search, walk.at.u >> 16, walk.at.v >> 16));
        walk.at.u = add32(walk.at.u, walk.stepU);
        walk.at.v = add32(walk.at.v, walk.stepV);
    }
}

void paint(const GradientFill& fill, PixelRun run, const std::uint8_t* indexes) {
    const GradientRamp& ramp = fill.ramp;
    if (!fill.hasAlpha) {
        for (std::size_t i = 0; i < run.size(); ++i) run[i] = ramp.colours[indexes[i]];
        return;
    }
    std::uint16_t colours[pieceLength];
    std::uint8_t alphas[pieceLength];
    for (std::size_t i = 0; i < run.size(); ++i) {
        colours[i] = ramp.colours[indexes[i]];
        alphas[i] = ramp.alphas[indexes[i]];
    }
    blendColours(run, colours, alphas);
}

// One index for the whole run.
void paintEven(const GradientFill& fill, PixelRun run, std::int32_t index) {
    const auto i = static_cast<std::size_t>(index);
    blendColour(run, fill.ramp.colours[i], fill.hasAlpha ? fill.ramp.alphas[i] : std::uint8_t{255});
}

}  // namespace

void fillGradientSpan(const GradientFill& fill, const SamplingMatrix& sampling, const Span& span) {
    const bool linear = fill.type == GradientType::linear;
    // A radial search goes on from pixel to pixel: it begins where the whole span does.
    const std::int32_t before = linear ? 0 : span.cutOff;
    Walk walk{.at = sampleAt(sampling, span.x - before, span.y), .stepU = sampling.a, .stepV = sampling.b};
    if (linear && walk.stepU == 0) return paintEven(fill, span.pixels, linearIndex(walk.at.u));
    RadialSearch search;
    if (!linear) search = beginRadialSearch(walk.at);
    std::uint8_t indexes[pieceLength];
    for (std::int32_t left = before; left > 0; left -= static_cast<std::int32_t>(pieceLength))
        radialIndexes(walk, search, {indexes, std::min(static_cast<std::size_t>(left), pieceLength)});
    for (PixelRun run = span.pixels; !run.empty();) {
        const std::size_t count = std::min(run.size(), pieceLength);
        if (linear)
            linearIndexes(walk, {indexes, count});
        else
            radialIndexes(walk, search, {indexes, count});
        paint(fill, run.first(count), indexes);
        run = run.subspan(count);
    }
}

}  // namespace qel
