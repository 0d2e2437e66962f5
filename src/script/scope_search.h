// Where a name without a path is looked for: among the locals of the function that runs, the variables of the target
// and those of the root.
#pragma once

#include "movie/movie.h"

namespace qel {

inline VariableList* localsOf(const ActionList* running) {
    return running && running->function ? &running->function->locals : nullptr;
}

// Null: the target is gone.
inline VariableList* targetList(ScriptContext& scripts) {
    if (scripts.target.isRoot()) return &scripts.variables;
    ClipInstance* clip = scripts.target.clip();
    return clip ? &clip->variables : nullptr;
}

// `name` is the text of a name.
inline Variable* findInScope(ScriptContext& scripts, const ActionList* running, const Text& name, std::uint32_t& hint) {
    if (running && running->function)
        if (Variable* found = running->function->locals.find(name, hint)) return found;
    if (ClipInstance* clip = scripts.target.clip())
        if (Variable* found = clip->variables.find(name, hint)) return found;
    return scripts.variables.find(name, hint);
}

}  // namespace qel
