// Where pieces of code wait: on the level that runs, or on the next one.
#pragma once

#include <span>

#include "script/action_list.h"

namespace qel {

struct Movie;

// Code of these bytes. Code that has been made lately is shared, so that what runs in every frame is made ready once.
Shared<ActionCode> shareCode(Movie& movie, std::span<const std::uint8_t> bytes);

// Puts a list behind the others of a level; it runs code on a target. Null when memory is exhausted.
enum class CodeOwner : std::uint8_t { list, function };  // who has the copy of the bytes that is charged
ActionList* addList(Movie& movie, ActionLevel& level, Shared<ActionCode> code, CodeOwner owner, const Target& target);

// Takes the lists off a level.
void emptyLevel(ActionLevel& level);

}  // namespace qel
