#include "render/gradient_ramp.h"

#include <algorithm>

namespace qel {
namespace {

constexpr std::int32_t rampEnd = 256;

// Channels of 5 and 6 bits as 8, so that the largest is 255.
constexpr std::int32_t widen5(std::int32_t channel) { return channel * 255 / 31; }
constexpr std::int32_t widen6(std::int32_t channel) { return channel * 255 / 63; }

struct Channels {
    std::int32_t red, green, blue, alpha;  // 0 to 255
};

Channels channelsOf(const GradientStop& stop) {
    return {widen5(stop.colour >> 11), widen6(stop.colour >> 5 & 0x3F), widen5(stop.colour & 0x1F), stop.alpha};
}

// The stop before an entry and the one behind it. Behind the last there is one more like it.
struct Between {
    const GradientStop* from;
    const GradientStop* to;
    std::int32_t toRatio;
};

void setEntry(GradientRamp& ramp, std::int32_t at, std::uint16_t colour, std::uint8_t alpha) {
    ramp.colours[static_cast<std::size_t>(at)] = colour;
    ramp.alphas[static_cast<std::size_t>(at)] = alpha;
}

void mixEntry(GradientRamp& ramp, std::int32_t at, const Between& between) {
    const std::int32_t fromRatio = between.from->ratio, distance = between.toRatio - fromRatio;
    if (distance <= 0) return setEntry(ramp, at, between.from->colour, between.from->alpha);
    const Channels from = channelsOf(*between.from), to = channelsOf(*between.to);
    const auto mix = [&](std::int32_t a, std::int32_t b) {
        return (b * (at - fromRatio) + a * (between.toRatio - at)) / distance;
    };
    const std::int32_t red = mix(from.red, to.red), green = mix(from.green, to.green), blue = mix(from.blue, to.blue);
    setEntry(ramp, at, static_cast<std::uint16_t>((red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3),
             static_cast<std::uint8_t>(mix(from.alpha, to.alpha)));
}

}  // namespace

void buildRamp(std::span<const GradientStop> stops, GradientRamp& ramp) {
    ramp = {};
    if (stops.empty()) return;
    const GradientStop& first = stops.front();
    const GradientStop& last = stops.back();
    for (std::int32_t i = 0; i < first.ratio; ++i) setEntry(ramp, i, first.colour, first.alpha);
    for (std::int32_t i = last.ratio; i < rampEnd; ++i) setEntry(ramp, i, last.colour, last.alpha);
    std::size_t next = std::min<std::size_t>(1, stops.size() - 1);
    Between between{.from = &first, .to = &stops[next], .toRatio = stops[next].ratio};
    for (std::int32_t i = first.ratio; i <= last.ratio; ++i) {
        if (i > between.toRatio) {
            between.from = between.to;
            if (next + 1 < stops.size()) {
                between.to = &stops[++next];
                between.toRatio = between.to->ratio;
            } else {
                between.toRatio = rampEnd;
            }
        }
        mixEntry(ramp, i, between);
    }
}

}  // namespace qel
