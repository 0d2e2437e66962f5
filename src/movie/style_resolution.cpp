#include "movie/style_resolution.h"

#include <algorithm>

namespace qel {
namespace {

bool isOfKind(const FillUse&, CharacterKind kind) { return isFillStyle(kind); }
bool isOfKind(const LineUse&, CharacterKind kind) { return kind == CharacterKind::lineStyle; }

template <class Style>
Result lookUp(CharacterDictionary& dictionary, StyleUse<Style>& use) {
    const Lookup found = lookupCharacter(dictionary, use.id);
    if (!found.character) return failed(found.result) ? found.result : Result::brokenDefinition;
    if (!isOfKind(use, found.character->kind)) return Result::brokenDefinition;
    use.style = CharacterHold<Style>(static_cast<Style*>(found.character.get()));
    return Result::done;
}

template <class Style>
bool earlier(const StyleUse<Style>& a, const StyleUse<Style>& b) {
    return a.id < b.id;
}

// Each name once, in ascending order, and the character for each.
template <class Style>
Result resolveUses(CharacterDictionary& dictionary, PoolArray<StyleUse<Style>>& uses) {
    std::sort(uses.begin(), uses.end(), earlier<Style>);
    const auto end = std::unique(uses.begin(), uses.end(), [](const auto& a, const auto& b) { return a.id == b.id; });
    uses.truncate(static_cast<std::uint32_t>(end - uses.begin()));
    for (StyleUse<Style>& use : uses) {
        const Result found = lookUp(dictionary, use);
        if (failed(found)) return found;
    }
    return Result::done;
}

template <class Style>
Result addName(Pool& pool, PoolArray<StyleUse<Style>>& uses, std::uint16_t id) {
    if (id == noCharacter || (!uses.empty() && uses.back().id == id)) return Result::done;
    StyleUse<Style> use;
    use.id = id;
    return uses.append(pool, std::move(use));
}

template <class Style>
std::uint16_t indexOf(const PoolArray<StyleUse<Style>>& uses, std::uint16_t id) {
    if (id == noCharacter) return StyleGroup::none;
    StyleUse<Style> wanted;
    wanted.id = id;
    return static_cast<std::uint16_t>(std::lower_bound(uses.begin(), uses.end(), wanted, earlier<Style>) -
                                      uses.begin());
}

}  // namespace

Result resolveStyles(CharacterDictionary& dictionary, ShapeGeometry& geometry) {
    Pool& pool = *dictionary.pool;
    for (const StyleGroup& group : geometry.groups)
        if (failed(addName(pool, geometry.fills, group.fill0Id)) ||
            failed(addName(pool, geometry.fills, group.fill1Id)) || failed(addName(pool, geometry.lines, group.lineId)))
            return Result::outOfMemory;
    Result resolved = resolveUses(dictionary, geometry.fills);
    if (!failed(resolved)) resolved = resolveUses(dictionary, geometry.lines);
    if (failed(resolved)) return resolved;
    for (StyleGroup& group : geometry.groups) {
        group.fill0 = indexOf(geometry.fills, group.fill0Id);
        group.fill1 = indexOf(geometry.fills, group.fill1Id);
        group.line = indexOf(geometry.lines, group.lineId);
    }
    for (const LineUse& use : geometry.lines)
        geometry.maximumLineWidth = std::max(geometry.maximumLineWidth, use.style->width);
    return Result::done;
}

}  // namespace qel
