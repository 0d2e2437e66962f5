// What the compilers of a movie source share: its names, its files, and the records that they write.
#pragma once

#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "author/source_data.h"
#include "author/source_names.h"

namespace qel::author {

// A sprite and what stands on its timeline, or a button and what it shows.
struct Nesting {
    const SourceCharacter* holder = nullptr;
    const SourceCharacter* held = nullptr;

    // By identifiers, so that of several faults the same is reported every time.
    friend bool operator<(const Nesting& a, const Nesting& b) {
        return std::pair(a.holder->id, a.held->id) < std::pair(b.holder->id, b.held->id);
    }
};

struct SourceBuild {
    SourceNames names;
    ReadSourceFile readFile;
    std::vector<Bytes> records;  // definitions and frames, in the order of the stream
    std::set<Nesting> nested;
};

// What a record, an item or a command cannot hold is the fault of this value of the source.
template <class Write>
Bytes written(const SourceValue& value, Write write) {
    try {
        return write();
    } catch (const std::logic_error& error) {
        fail(value, std::string("too large for the format: ") + error.what());
    }
}

// The character of this name, which is to stand inside `holder` (null: on the movie's own timeline). Throws
// SourceError.
const SourceCharacter& placedIn(SourceBuild& build, const SourceCharacter* holder, const SourceValue& name);

// Players do not go deeper than 64, and a sprite inside itself would have no end. Throws SourceError.
void checkNesting(const SourceBuild& build);

}  // namespace qel::author
