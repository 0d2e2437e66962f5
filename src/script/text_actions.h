// Actions that make and take apart texts.
#pragma once

#include "format/action_codes.h"
#include "script/value.h"

namespace qel {

struct Movie;

// Pops the operands of an action and pushes its result. False: it is none of these.
bool performTextAction(Movie& movie, Action action);

// The action Add2: texts are joined, except that an empty one counts as a number.
Value sumOrJoined(Movie& movie, const Value& a, const Value& b);

}  // namespace qel
