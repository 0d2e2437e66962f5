// Where pieces of code wait: on the level that runs, or on the next one.
#pragma once

#include "script/action_list.h"

namespace qel {

struct Movie;
struct ScriptContext;

// Code of these bytes. Code that has been made lately is shared, so that what runs in every frame is made ready once.
Shared<ActionCode> shareCode(Movie& movie, std::span<const std::uint8_t> bytes);

// A list that runs code on a target; null when memory is exhausted.
enum class CodeOwner : std::uint8_t { list, function };  // who has the copy of the bytes that is charged
PoolPtr<ActionList> makeList(Movie& movie, Shared<ActionCode> code, CodeOwner owner, const Target& target);

// Behind the lists of the current level, or of the first where nothing runs.
void appendList(Movie& movie, PoolPtr<ActionList> list);

// On the next level, which becomes the current one. There is one.
void openLevel(Movie& movie, PoolPtr<ActionList> list);
void openLevel(Movie& movie, PoolArray<PoolPtr<ActionList>> lists);

// The lists of a level that has ended.
void emptyLevel(ScriptContext& scripts, ActionLevel& level);

}  // namespace qel
