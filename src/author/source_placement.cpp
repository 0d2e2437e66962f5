#include "author/source_placement.h"

#include <cmath>
#include <numbers>

namespace qel::author {
namespace {

std::int32_t fixed(double value) { return static_cast<std::int32_t>(std::llround(value * fixedOne)); }

double numberBetween(const SourceValue& value, double least, double most) {
    const double number = numberOf(value);
    if (!(number >= least && number <= most))
        fail(value, "a number from " + std::to_string(std::int64_t(least)) + " to " +
                        std::to_string(std::int64_t(most)) + " belongs here");
    return number;
}

double boundedNumber(const SourceValue& value, double most) { return numberBetween(value, -most, most); }

constexpr double mostPixels = 32767, mostScale = 4000, mostDegrees = 1e6;

}  // namespace

Matrix matrixOf(const Placement& placement) {
    if (placement.matrix) return *placement.matrix;
    const double angle = placement.rotate * std::numbers::pi / 180;
    const double cosine = std::cos(angle), sine = std::sin(angle);
    return {.a = fixed(placement.scaleX * cosine),
            .b = fixed(placement.scaleX * sine),
            .c = fixed(-placement.scaleY * sine),
            .d = fixed(placement.scaleY * cosine),
            .tx = static_cast<std::int16_t>(std::lround(placement.x)),
            .ty = static_cast<std::int16_t>(std::lround(placement.y))};
}

bool readPlacement(const SourceValue& object, Placement& placement) {
    bool any = false;
    const auto take = [&](const char* name, double most, std::initializer_list<double*> fields) {
        const SourceValue* value = object.find(name);
        if (!value) return;
        for (double* field : fields) *field = boundedNumber(*value, most);
        placement.matrix.reset();
        any = true;
    };
    take("x", mostPixels, {&placement.x});
    take("y", mostPixels, {&placement.y});
    take("scale", mostScale, {&placement.scaleX, &placement.scaleY});
    take("scaleX", mostScale, {&placement.scaleX});
    take("scaleY", mostScale, {&placement.scaleY});
    take("rotate", mostDegrees, {&placement.rotate});
    if (const SourceValue* matrix = object.find("matrix")) {
        if (any) fail(*matrix, "a matrix says all there is; x, y, scale and rotate do not stand beside it");
        placement.matrix = readMatrix(*matrix);
        any = true;
    }
    return any;
}

Matrix readMatrix(const SourceValue& value) {
    const auto& items = listOf(value);
    if (items.size() != 6) fail(value, "a matrix has six numbers: a, b, c, d, tx, ty");
    return {.a = fixed(boundedNumber(items[0], mostScale)),
            .b = fixed(boundedNumber(items[1], mostScale)),
            .c = fixed(boundedNumber(items[2], mostScale)),
            .d = fixed(boundedNumber(items[3], mostScale)),
            .tx = static_cast<std::int16_t>(std::lround(boundedNumber(items[4], mostPixels))),
            .ty = static_cast<std::int16_t>(std::lround(boundedNumber(items[5], mostPixels)))};
}

ColourTransform readColourTransform(const SourceValue& object) {
    allowOnly(object, {"redMultiplier", "greenMultiplier", "blueMultiplier", "alphaMultiplier", "redOffset",
                       "greenOffset", "blueOffset", "alphaOffset"});
    ColourTransform transform;
    const auto multiplier = [&](const char* name, std::uint16_t& field) {
        if (const SourceValue* value = object.find(name))
            field = static_cast<std::uint16_t>(std::lround(numberBetween(*value, 0, 127) * 256));
    };
    const auto offset = [&](const char* name, std::int16_t& field) {
        if (const SourceValue* value = object.find(name))
            field = static_cast<std::int16_t>(integerOf(*value, -255, 255));
    };
    multiplier("redMultiplier", transform.redMultiplier);
    multiplier("greenMultiplier", transform.greenMultiplier);
    multiplier("blueMultiplier", transform.blueMultiplier);
    multiplier("alphaMultiplier", transform.alphaMultiplier);
    offset("redOffset", transform.redOffset);
    offset("greenOffset", transform.greenOffset);
    offset("blueOffset", transform.blueOffset);
    offset("alphaOffset", transform.alphaOffset);
    return transform;
}

}  // namespace qel::author
