#include "author/source_shapes.h"

#include <algorithm>
#include <limits>

#include "author/records.h"
#include "author/source_path.h"
#include "author/source_placement.h"

namespace qel::author {

void ShapeCompiler::defineFill(const SourceCharacter& character) {
    allowOnly(*character.value, {"fill", "identifier"});
    const SourcePaint paint = paintOf(memberOf(*character.value, "fill"));
    build_.records.push_back(solidFill(character.id, {paint.colour, paint.alpha}));
}

void ShapeCompiler::defineGradient(std::uint16_t id, const SourceValue& value) {
    allowOnly(value, {"gradient", "matrix", "stops", "identifier"});
    const std::string& type = textOf(memberOf(value, "gradient"));
    if (type != "linear" && type != "radial")
        fail(memberOf(value, "gradient"), "\"" + type + "\" is no gradient; use linear or radial");
    std::vector<GradientStop> stops;
    for (const SourceValue& stop : listOf(memberOf(value, "stops"))) {
        const auto& parts = listOf(stop);
        if (parts.size() != 2) fail(stop, "a stop is [ratio, colour]");
        const SourcePaint paint = paintOf(parts[1]);
        const std::int64_t least = stops.empty() ? 0 : stops.back().ratio;  // ratios ascend
        stops.push_back({static_cast<std::uint8_t>(integerOf(parts[0], least, 255)), paint.colour, paint.alpha});
    }
    if (stops.empty()) fail(memberOf(value, "stops"), "a gradient has at least one stop");
    if (stops.size() > 255) fail(memberOf(value, "stops"), "a gradient has at most 255 stops");
    Matrix matrix = identityMatrix;
    if (const SourceValue* given = value.find("matrix")) matrix = readMatrix(*given);
    const GradientType kind = type == "linear" ? GradientType::linear : GradientType::radial;
    build_.records.push_back(written(value, [&] { return gradientFill(id, kind, matrix, stops); }));
}

void ShapeCompiler::defineLine(const SourceCharacter& character) {
    const SourceValue& value = *character.value;
    allowOnly(value, {"line", "width", "identifier"});
    const SourcePaint paint = paintOf(memberOf(value, "line"));
    const SourceValue* width = value.find("width");
    const auto pixels = static_cast<unsigned>(width ? integerOf(*width, 0, 63) : 1);
    build_.records.push_back(lineStyle(character.id, {paint.colour, paint.alpha}, pixels));
}

std::uint16_t ShapeCompiler::fillAbove(std::uint16_t before, const SourceValue& value, ShapeRecord& shape) {
    const bool isColour = textOf(value).starts_with('#');
    const SourceCharacter* style = isColour ? nullptr : &build_.names.character(value);
    const bool isGradient = style && style->kind == SourceCharacter::Kind::gradient;
    if (style && style->kind != SourceCharacter::Kind::fill && !isGradient)
        fail(value, "\"" + value.text + "\" is no fill");
    if (isGradient) {
        std::uint16_t id = style->id;
        if (id <= before) defineGradient(id = build_.names.newId(value, before), *style->value);
        shape.gradientFills.push_back(id);
        return id;
    }
    if (style && style->id > before) return style->id;
    const SourcePaint paint = paintOf(style ? memberOf(*style->value, "fill") : value);
    for (const auto& [existing, itsPaint] : inlineFills_)
        if (existing > before && itsPaint == paint) return existing;
    const std::uint16_t id = build_.names.newId(value, before);
    build_.records.push_back(solidFill(id, {paint.colour, paint.alpha}));
    inlineFills_.push_back({id, paint});
    return id;
}

std::uint16_t ShapeCompiler::lineFor(const SourceValue& value) const {
    return build_.names.characterOf(value, SourceCharacter::Kind::line, "line");
}

void ShapeCompiler::defineShape(const SourceCharacter& character) {
    allowOnly(*character.value, {"shape", "identifier"});
    constexpr std::int16_t far = std::numeric_limits<std::int16_t>::max(),
                           near = std::numeric_limits<std::int16_t>::min();
    ShapeRecord shape{.id = character.id,
                      .bounds = {far, far, near, near},
                      .outline = {},
                      .hasFill = false,
                      .bitmapFills = {},
                      .gradientFills = {}};
    std::uint16_t fillBefore = 0;
    std::vector<PathSummary> summaries;
    for (const SourceValue& path : listOf(memberOf(*character.value, "shape"))) {
        allowOnly(path, {"path", "fill", "line"});
        const SourceValue& text = memberOf(path, "path");
        std::uint16_t fill = noCharacter, line = noCharacter;
        if (const SourceValue* value = path.find("fill")) {
            fill = fillBefore = fillAbove(fillBefore, *value, shape);
            shape.hasFill = true;
        }
        if (const SourceValue* value = path.find("line")) line = lineFor(*value);
        if (fill == noCharacter && line == noCharacter) fail(path, "a path has a fill or a line");
        try {
            const std::vector<SubPath> subPaths = parsePath(textOf(text));
            drawPath(shape.outline, subPaths, line, fill, shape.bounds);
            summaries.push_back({line, fill, countSegments(subPaths, fill)});
        } catch (const PathError& error) {
            fail(text, error.what());
        }
    }
    if (shape.bounds.xMin > shape.bounds.xMax) shape.bounds = {};
    build_.records.push_back(written(*character.value, [&] { return author::shape(shape); }));
    paths_[character.id] = std::move(summaries);
}

const std::vector<ShapeCompiler::PathSummary>& ShapeCompiler::pathsOf(const SourceValue& name) const {
    return paths_.at(build_.names.characterOf(name, SourceCharacter::Kind::shape, "shape"));
}

void ShapeCompiler::defineMorph(const SourceCharacter& character) {
    const SourceValue& value = *character.value;
    allowOnly(value, {"morph", "identifier"});
    const SourceValue& names = memberOf(value, "morph");
    if (listOf(names).size() != 2) fail(names, "a morph is [\"start shape\", \"end shape\"]");
    const auto &start = pathsOf(names.items[0]), &end = pathsOf(names.items[1]);
    if (start.size() != end.size()) fail(names, "both shapes of a morph have as many paths");
    std::vector<StylePair> pairs;
    const auto pairUp = [&](std::uint16_t from, std::uint16_t to) {
        const bool known = std::any_of(pairs.begin(), pairs.end(),
                                       [=](const StylePair& pair) { return pair.start == from && pair.end == to; });
        if (from != to && from != noCharacter && to != noCharacter && !known) pairs.push_back({from, to});
    };
    for (std::size_t i = 0; i < start.size(); ++i) {
        const std::string which = "path " + std::to_string(i + 1);
        if (start[i].segments != end[i].segments)
            fail(names, which + " has " + std::to_string(start[i].segments) + " segments in one shape and " +
                            std::to_string(end[i].segments) + " in the other");
        if ((start[i].fill == noCharacter) != (end[i].fill == noCharacter) ||
            (start[i].line == noCharacter) != (end[i].line == noCharacter))
            fail(names, which + " has a fill or a line in one shape only");
        pairUp(start[i].fill, end[i].fill);
        pairUp(start[i].line, end[i].line);
    }
    if (pairs.size() > 255) fail(names, "a morph changes at most 255 styles");
    const auto idOf = [&](std::size_t i) {
        return build_.names.characterOf(names.items[i], SourceCharacter::Kind::shape, "shape");
    };
    build_.records.push_back(written(value, [&] { return morphShape(character.id, idOf(0), idOf(1), pairs); }));
}

}  // namespace qel::author
