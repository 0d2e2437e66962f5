// Making lists of action code, and putting them where they will run.
#pragma once

#include "script/action_list.h"

namespace qel {

struct Movie;

// A copy of code bytes. None when memory is exhausted.
Shared<ActionCode> copyCode(Movie& movie, std::span<const std::uint8_t> bytes);

// A list that is to run on a target; the target's clip stays until it has. Null when memory is exhausted.
PoolPtr<ActionList> makeList(Movie& movie, Shared<ActionCode> code, const Target& target);

// Puts a list behind those of the level that runs, or of the first.
void appendList(Movie& movie, PoolPtr<ActionList> list);

// Opens the next level with lists. There is one: the caller has looked.
void openLevel(Movie& movie, PoolPtr<ActionList> list);
void openLevel(Movie& movie, PoolArray<PoolPtr<ActionList>> lists);

}  // namespace qel
