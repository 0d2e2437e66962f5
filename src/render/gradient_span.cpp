#include "render/gradient_span.h"

#include <algorithm>

#include "render/pixel_rows.h"
#include "render/radial_index.h"

namespace qel {
namespace {

constexpr std::int32_t lastIndex = 255;
constexpr std::size_t pieceLength = longestRadialRun;  // pixels that are painted at a time

// Along the row. Points wrap at 32 bits.
struct LinearWalk {
    std::int32_t u, step;
};

// The index of a linear gradient lies in bits 16 to 23 of this.
constexpr std::int32_t fromFirstIndex(std::int32_t u) { return add32(u, 128 * fixedOne); }

constexpr std::int32_t linearIndex(std::int32_t u) { return std::clamp(fromFirstIndex(u) >> 16, 0, lastIndex); }

// Whether no index of a row needs to be limited: it goes from the first to the last in one direction.
bool staysOnRamp(std::int32_t u, std::int32_t step, std::size_t count) {
    constexpr std::int64_t end = std::int64_t{lastIndex + 1} << 16;
    const std::int64_t first = fromFirstIndex(u);
    const std::int64_t last = first + std::int64_t{step} * (static_cast<std::int64_t>(count) - 1);
    return first >= 0 && first < end && last >= 0 && last < end;
}

// The ramp's index for each of the next pixels of the walk.
void takeLinearIndexes(LinearWalk& walk, std::span<std::uint8_t> indexes) {
    const auto count = static_cast<std::uint32_t>(indexes.size());
    const auto step = static_cast<std::uint32_t>(walk.step);
    std::uint8_t* const out = indexes.data();
    if (staysOnRamp(walk.u, walk.step, count)) {
        const auto first = static_cast<std::uint32_t>(fromFirstIndex(walk.u));
        for (std::uint32_t i = 0; i < count; ++i) out[i] = static_cast<std::uint8_t>((first + i * step) >> 16);
    } else {
        std::int32_t u = walk.u;
        for (std::uint32_t i = 0; i < count; ++i, u = add32(u, walk.step))
            out[i] = static_cast<std::uint8_t>(linearIndex(u));
    }
    walk.u = wrap32(std::int64_t{walk.u} + std::int64_t{step} * count);
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

// Paints the run in pieces whose indexes `take` finds.
template <class Take>
void paintPieces(const GradientFill& fill, PixelRun run, Take take) {
    std::uint8_t indexes[pieceLength];
    while (!run.empty()) {
        const std::size_t count = std::min(run.size(), pieceLength);
        take(std::span(indexes, count));
        paint(fill, run.first(count), indexes);
        run = run.subspan(count);
    }
}

void fillLinear(const GradientFill& fill, const SamplingMatrix& sampling, const Span& span) {
    LinearWalk walk{.u = sampleAt(sampling, span.x, span.y).u, .step = sampling.a};
    if (walk.step == 0) return paintEven(fill, span.pixels, linearIndex(walk.u));
    paintPieces(fill, span.pixels, [&](std::span<std::uint8_t> indexes) { takeLinearIndexes(walk, indexes); });
}

// The search goes on from pixel to pixel: it begins where the whole span does.
void fillRadial(const GradientFill& fill, const SamplingMatrix& sampling, const Span& span) {
    RadialWalk walk = beginRadialWalk(sampleAt(sampling, span.x - span.cutOff, span.y), sampling.a, sampling.b);
    for (auto left = static_cast<std::size_t>(span.cutOff); left > 0;) {
        std::uint8_t unseen[pieceLength];
        const std::size_t count = std::min(left, pieceLength);
        takeRadialIndexes(walk, {unseen, count});
        left -= count;
    }
    paintPieces(fill, span.pixels, [&](std::span<std::uint8_t> indexes) { takeRadialIndexes(walk, indexes); });
}

}  // namespace

void fillGradientSpan(const GradientFill& fill, const SamplingMatrix& sampling, const Span& span) {
    if (fill.type == GradientType::linear)
        fillLinear(fill, sampling, span);
    else
        fillRadial(fill, sampling, span);
}

}  // namespace qel
