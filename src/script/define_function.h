// Functions of scripts.
#pragma once

#include "movie/content_reader.h"
#include "script/action_list.h"

namespace qel {

struct Movie;

// The action DefineFunction: its operands, and the body that begins at `bodyAt` in the running list. Answers where the
// code goes on; at the list's end where operands or body are cut short.
std::uint32_t defineFunction(Movie& movie, const ActionList& list, ContentReader operands, std::uint32_t bodyAt);

// Gives back what the device's copies of names and code are charged with.
void giveBackFunctionCharges(ScriptMemory& memory, const ScriptFunction& function);

}  // namespace qel
