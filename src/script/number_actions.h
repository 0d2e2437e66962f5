// Actions that calculate, compare and decide.
#pragma once

#include "format/action_codes.h"
#include "script/value.h"

namespace qel {

struct Movie;

// Pops the operands of an action and pushes its result. False: it is none of these.
bool performNumberAction(Movie& movie, Action action);

// a - b, which alone among the four minds the constants of infinity and of NaN.
Value difference(ScriptMemory& memory, const Value& a, const Value& b);

}  // namespace qel
