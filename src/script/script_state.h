// What scripts have made: its beginning and its end.
#pragma once

#include <cstddef>

#include "script/script_context.h"

namespace qel {

// Counts work that grows with what an action is given as so many more actions: long texts, many values, long lists.
inline void spend(ScriptContext& scripts, std::size_t work) { scripts.memory.spend(work); }
inline void spendText(ScriptContext& scripts, std::size_t bytes) { spend(scripts, bytes / 64); }

// Ends the run with a failure.
inline void failRun(ScriptContext& scripts, Result failure) {
    scripts.failure = failure;
    scripts.memory.actionsLeft = 0;
}

// Takes every queued list off every level.
void discardLists(ScriptContext& scripts);

// Frees all values, functions and objects. Clips that still have variables let go of nothing that is freed here: they
// go first.
void forgetEverything(ScriptContext& scripts);

}  // namespace qel
