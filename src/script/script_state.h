// What scripts have made: its beginning and its end.
#pragma once

#include "script/script_context.h"

namespace qel {

// Takes every queued list off every level.
void discardLists(ScriptContext& scripts);

// Frees all values, functions and objects. Clips that still have variables let go of nothing that is freed here: they
// go first.
void forgetEverything(ScriptContext& scripts);

}  // namespace qel
