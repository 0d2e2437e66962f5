// Compiles the command lists of a movie source: what happens on a key, or on every frame, in readable names.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "author/source_build.h"

namespace qel::author {

// An instance of the movie's timeline, as a command finds it.
struct TargetPosition {
    std::uint16_t character = 0;
    std::uint8_t position = 0;  // in the drawing order, counted from 0
};

// What the place of a list brings along.
struct CommandPlace {
    bool eventNeeded = true;  // a command button runs its whole list, whatever the events
    // Where the instance of this name stands; empty where nothing is known of instances.
    std::function<std::optional<TargetPosition>(const std::string& instance)> findInstance = {};
};

// Throws SourceError.
Bytes compileCommands(const SourceValue& list, const SourceBuild& build, const CommandPlace& place);

// The code of a key: its name or its number. Throws SourceError.
std::uint8_t keyOf(const SourceValue& value);

}  // namespace qel::author
