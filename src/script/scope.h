// Variables by their names: where they are looked for, and where they are made.
#pragma once

#include "script/action_list.h"

namespace qel {

struct Movie;

// The list that is running, or null.
ActionList* runningList(Movie& movie);

// A reference to a clip, or to the root (null).
Value clipValue(Movie& movie, ClipInstance* clip);
Value targetValue(Movie& movie, const Target& target);

// What a name stands for: `this`, `_root` and the like, a variable, a function, a clip. A path may stand in front of
// it, behind which ":" follows. `undefined` where there is nothing. `hint` is where the variable was found last time:
// whoever asks again and again keeps it, and begins with 0.
Value getVariable(Movie& movie, const Name& name, std::uint32_t& hint);
inline Value getVariable(Movie& movie, const Name& name) {
    std::uint32_t hint = 0;
    return getVariable(movie, name, hint);
}

// Without the special names, functions and clips: the variable, or null.
const Value* findVariable(Movie& movie, const Name& name);

void setVariable(Movie& movie, const Name& name, Value value, std::uint32_t& hint);

// A variable of the function that runs, or of the target; of a given list. A path in front of the name only has to
// resolve.
void defineLocal(Movie& movie, const Name& name, Value value);
void defineIn(Movie& movie, VariableList& list, const Name& name, Value value);

void deleteVariable(Movie& movie, const Name& name);

// Stores a value in the variable of a list, making it where it is missing.
void storeVariable(Movie& movie, VariableList& list, const Name& name, Value value);

}  // namespace qel
