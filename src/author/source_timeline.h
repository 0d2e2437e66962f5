// Compiles the frames of a movie source: people place instances by name and move, tween and remove them; content wants
// positions in the drawing order, which shift with everything that comes and goes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "author/records.h"
#include "author/source_build.h"

namespace qel::author {

// One frame record and what the source says beside it.
struct CompiledFrame {
    std::vector<Bytes> before;  // records that stand in front of it; only on the movie's own timeline
    Bytes items;
    std::optional<std::uint16_t> cacheId;  // of a key frame
    std::optional<std::string> label;
    // The items of a frame that scripts call: its action code, as a part of `items`.
    std::optional<Location> callable;
};

// The timeline of a sprite, or the movie's own (null). Throws SourceError.
std::vector<CompiledFrame> compileFrames(const SourceValue& frames, SourceBuild& build, const SourceCharacter* sprite);

// The record of a frame, the `number`-th of its timeline, counted from 0. `where` is to blame when it is too large.
Bytes frameRecord(const SourceValue& where, const CompiledFrame& compiled, std::size_t number);
// Where the callable items of that frame lie in its record.
Location callableIn(const CompiledFrame& compiled);

}  // namespace qel::author
