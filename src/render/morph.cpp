#include "render/morph.h"

#include <algorithm>

#include "format/integers.h"
#include "render/styles.h"

namespace qel {
namespace {

constexpr std::uint16_t none = StyleGroup::none;

// --- making the shape between

Character* makeBetween(const Character& start, Pool& pool) {
    switch (start.kind) {
        case CharacterKind::solidFill:
            return makeFill<SolidFill>(pool, start.kind, FillKind::solid, static_cast<const SolidFill&>(start).order)
                .release();
        case CharacterKind::gradientFill:
            return makeFill<GradientFill>(pool, start.kind, FillKind::gradient,
                                          static_cast<const GradientFill&>(start).order)
                .release();
        case CharacterKind::bitmapFill:
            return makeFill<BitmapFill>(pool, start.kind, FillKind::bitmap, static_cast<const BitmapFill&>(start).order)
                .release();
        case CharacterKind::lineStyle: return makeCharacter<LineStyle>(pool, start.kind).release();
        default: return nullptr;
    }
}

// One of the two styles that a group may show, and where it stands among those of its shape.
template <class Style>
struct StyleSide {
    std::uint16_t index = none;
    std::uint16_t id = noCharacter;
    Style* style = nullptr;
};

template <class Style>
StyleSide<Style> sideOf(const PoolArray<StyleUse<Style>>& uses, std::uint16_t index) {
    if (index == none) return {};
    return {index, uses[index].id, uses[index].style.get()};
}

bool hasPair(const MorphShape& character, std::uint16_t start, std::uint16_t end) {
    return std::any_of(character.pairs.begin(), character.pairs.end(),
                       [=](const StylePair& pair) { return pair.start == start && pair.end == end; });
}

// The morph's own list of fills or lines as it is made.
template <class Style>
struct StyleList {
    Pool& pool;
    const MorphShape& character;
    PoolArray<MorphStyle>& interpolated;
    PoolArray<StyleUse<Style>>& uses;
    PoolArray<std::uint16_t> taken;  // for each style of the start shape that is used as it is: its place in `uses`
};

template <class Style>
Result addUse(StyleList<Style>& list, std::uint16_t id, Style* style, std::uint16_t& index) {
    StyleUse<Style> use;
    use.id = id;
    use.style = CharacterHold<Style>(style);
    if (failed(list.uses.append(list.pool, std::move(use)))) return Result::outOfMemory;
    index = static_cast<std::uint16_t>(list.uses.size() - 1);
    return Result::done;
}

// The style between two that differ, made when it is met first.
template <class Style>
Result takePair(StyleList<Style>& list, const StyleSide<Style>& start, const StyleSide<Style>& end,
                std::uint16_t& index) {
    for (const MorphStyle& known : list.interpolated) {
        if (known.start.get() != start.style || known.end.get() != end.style) continue;
        index = known.index;
        return Result::done;
    }
    Character* const made = makeBetween(*start.style, list.pool);
    if (!made) return Result::outOfMemory;
    // The use keeps it: a character that no dictionary has is freed with its last holder.
    const CharacterHold<Character> hold(made);
    if (failed(addUse(list, start.id, static_cast<Style*>(made), index))) return Result::outOfMemory;
    MorphStyle added;
    added.start = CharacterHold<Character>(start.style);
    added.end = CharacterHold<Character>(end.style);
    added.between = made;
    added.index = index;
    return list.interpolated.append(list.pool, std::move(added));
}

template <class Style>
Result takeStyle(StyleList<Style>& list, const StyleSide<Style>& start, const StyleSide<Style>& end,
                 std::uint16_t& index) {
    index = none;
    if (!start.style || !end.style) return Result::done;
    if (start.style == end.style) {
        std::uint16_t& taken = list.taken[start.index];
        if (taken == none && failed(addUse(list, start.id, start.style, taken))) return Result::outOfMemory;
        index = taken;
        return Result::done;
    }
    const bool pairs = start.style->kind == end.style->kind && hasPair(list.character, start.id, end.id);
    return pairs ? takePair(list, start, end, index) : Result::done;
}

template <class Style>
Result prepare(StyleList<Style>& list, std::uint32_t startStyles) {
    if (failed(list.taken.assignZeros(list.pool, startStyles))) return Result::outOfMemory;
    std::fill(list.taken.begin(), list.taken.end(), none);
    return Result::done;
}

Result makeGroups(const MorphShape& character, Pool& pool, Morph& morph) {
    const ShapeGeometry &from = morph.start->geometry, &to = morph.end->geometry;
    ShapeGeometry& geometry = morph.geometry;
    StyleList<FillStyle> fills{pool, character, morph.interpolated, geometry.fills, {}};
    StyleList<LineStyle> lines{pool, character, morph.interpolated, geometry.lines, {}};
    if (failed(prepare(fills, from.fills.size())) || failed(prepare(lines, from.lines.size())) ||
        failed(geometry.groups.reserve(pool, from.groups.size())))
        return Result::outOfMemory;
    const StyleGroup noStyles;
    for (std::uint32_t i = 0; i < from.groups.size(); ++i) {
        const StyleGroup& start = from.groups[i];
        const StyleGroup& end = i < to.groups.size() ? to.groups[i] : noStyles;
        StyleGroup group;
        group.end = start.end;
        if (failed(takeStyle(fills, sideOf(from.fills, start.fill0), sideOf(to.fills, end.fill0), group.fill0)) ||
            failed(takeStyle(fills, sideOf(from.fills, start.fill1), sideOf(to.fills, end.fill1), group.fill1)) ||
            failed(takeStyle(lines, sideOf(from.lines, start.line), sideOf(to.lines, end.line), group.line)))
            return Result::outOfMemory;
        geometry.groups.appendReserved(group);
    }
    return Result::done;
}

// --- interpolation

// Ratio 32768 is the end. Differences times the ratio wrap at 32 bits.
std::int32_t between(std::int32_t start, std::int32_t end, std::uint16_t ratio) {
    return start + (multiply32(end - start, ratio) >> 15);
}

std::int32_t betweenFixed(std::int32_t start, std::int32_t end, std::uint16_t ratio) {
    return wrap32(start + (((std::int64_t{end} - start) * ratio) >> 15));
}

std::uint8_t betweenByte(std::uint8_t start, std::uint8_t end, std::uint16_t ratio) {
    return static_cast<std::uint8_t>(between(start, end, ratio));
}

// Channel by channel, widened with zeros below.
std::uint16_t betweenColours(std::uint16_t start, std::uint16_t end, std::uint16_t ratio) {
    if (start == end) return start;
    const auto channel = [&](auto widen) { return between(widen(start), widen(end), ratio); };
    const std::int32_t red = channel([](std::int32_t c) { return c >> 8 & 0xF8; });
    const std::int32_t green = channel([](std::int32_t c) { return c >> 3 & 0xFC; });
    const std::int32_t blue = channel([](std::int32_t c) { return c << 3 & 0xF8; });
    return static_cast<std::uint16_t>((red & 0xF8) << 8 | (green & 0xFC) << 3 | (blue & 0xF8) >> 3);
}

Matrix betweenMatrices(const Matrix& start, const Matrix& end, std::uint16_t ratio) {
    return {.a = betweenFixed(start.a, end.a, ratio),
            .b = betweenFixed(start.b, end.b, ratio),
            .c = betweenFixed(start.c, end.c, ratio),
            .d = betweenFixed(start.d, end.d, ratio),
            .tx = wrap16(between(start.tx, end.tx, ratio)),
            .ty = wrap16(between(start.ty, end.ty, ratio))};
}

Point betweenPoints(Point start, Point end, std::uint16_t ratio) {
    return {wrap16(between(start.x, end.x, ratio)), wrap16(between(start.y, end.y, ratio))};
}

void interpolate(const GradientFill& start, const GradientFill& end, std::uint16_t ratio, GradientFill& fill) {
    fill.type = start.type;
    fill.matrix = betweenMatrices(start.matrix, end.matrix, ratio);
    fill.hasAlpha = start.hasAlpha && end.hasAlpha;
    for (std::size_t i = 0; i < fill.ramp.colours.size(); ++i) {
        fill.ramp.colours[i] = betweenColours(start.ramp.colours[i], end.ramp.colours[i], ratio);
        fill.ramp.alphas[i] =
            fill.hasAlpha ? betweenByte(start.ramp.alphas[i], end.ramp.alphas[i], ratio) : std::uint8_t{255};
    }
}

void interpolateStyle(const MorphStyle& style, std::uint16_t ratio) {
    switch (style.between->kind) {
        case CharacterKind::solidFill: {
            const auto &start = static_cast<const SolidFill&>(*style.start),
                       &end = static_cast<const SolidFill&>(*style.end);
            auto& fill = static_cast<SolidFill&>(*style.between);
            fill.colour = betweenColours(start.colour, end.colour, ratio);
            fill.alpha = betweenByte(start.alpha, end.alpha, ratio);
            break;
        }
        case CharacterKind::gradientFill:
            interpolate(static_cast<const GradientFill&>(*style.start), static_cast<const GradientFill&>(*style.end),
                        ratio, static_cast<GradientFill&>(*style.between));
            break;
        case CharacterKind::bitmapFill: {
            const auto &start = static_cast<const BitmapFill&>(*style.start),
                       &end = static_cast<const BitmapFill&>(*style.end);
            auto& fill = static_cast<BitmapFill&>(*style.between);
            fill.matrix = betweenMatrices(start.matrix, end.matrix, ratio);
            fill.alpha = betweenByte(start.alpha, end.alpha, ratio);
            fill.flags = start.flags;
            fill.bitmapId = start.bitmapId;
            break;
        }
        case CharacterKind::lineStyle: {
            const auto &start = static_cast<const LineStyle&>(*style.start),
                       &end = static_cast<const LineStyle&>(*style.end);
            auto& line = static_cast<LineStyle&>(*style.between);
            line.colour = betweenColours(start.colour, end.colour, ratio);
            line.width = betweenByte(start.width, end.width, ratio);
            line.alpha = start.alpha;
            break;
        }
        default: break;
    }
}

}  // namespace

Result makeMorph(const MorphShape& character, Pool& pool, Morph& morph) {
    const ShapeGeometry &from = morph.start->geometry, &to = morph.end->geometry;
    morph.geometry.hasFill = from.hasFill && to.hasFill;
    if (failed(makeGroups(character, pool, morph))) return Result::outOfMemory;
    const std::uint32_t count = std::min(from.segments.size(), to.segments.size());
    if (failed(morph.geometry.segments.assign(pool, from.segments.span().first(count)))) return Result::outOfMemory;
    updateMorph(morph);
    return Result::done;
}

void updateMorph(Morph& morph) {
    for (const MorphStyle& style : morph.interpolated) interpolateStyle(style, morph.ratio);
    ShapeGeometry& geometry = morph.geometry;
    geometry.maximumLineWidth = 0;
    for (const LineUse& use : geometry.lines)
        geometry.maximumLineWidth = std::max(geometry.maximumLineWidth, use.style->width);
    for (std::uint32_t i = 0; i < geometry.segments.size(); ++i) {
        const PathSegment &start = morph.start->geometry.segments[i], &end = morph.end->geometry.segments[i];
        geometry.segments[i] = {.straight = start.straight && end.straight,
                                .start = betweenPoints(start.start, end.start, morph.ratio),
                                .middle = betweenPoints(start.middle, end.middle, morph.ratio),
                                .end = betweenPoints(start.end, end.end, morph.ratio)};
    }
}

}  // namespace qel
