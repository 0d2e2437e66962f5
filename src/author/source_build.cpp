#include "author/source_build.h"

#include <map>

namespace qel::author {

const SourceCharacter& placedIn(SourceBuild& build, const SourceCharacter* holder, const SourceValue& name) {
    const SourceCharacter& character = build.names.placeable(name);
    using Kind = SourceCharacter::Kind;
    const bool holds =
        character.kind == Kind::sprite || character.kind == Kind::button || character.kind == Kind::commandButton;
    if (holder && holds) build.nested.insert({holder, &character});
    return character;
}

void checkNesting(const SourceBuild& build) {
    constexpr int deepest = 64;
    std::map<const SourceCharacter*, int> depths;  // of what is inside
    for (bool changed = true; changed;) {
        changed = false;
        for (const auto& [holder, held] : build.nested) {
            const int depth = depths[held] + 1;
            if (depth <= depths[holder]) continue;
            if (depth == deepest)
                fail(*holder->value, "sprites stand in one another 64 deep here; does one hold itself?");
            depths[holder] = depth;
            changed = true;
        }
    }
}

}  // namespace qel::author
