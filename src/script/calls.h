// Calls: arguments off the stack, functions of the device, functions of scripts, constructors, called frames.
#pragma once

#include <span>

#include "script/action_list.h"

namespace qel {

struct Movie;

using Arguments = std::span<Value>;

// The stack. What is popped off an empty one is `undefined`.
void push(Movie& movie, Value value);
Value pop(Movie& movie);

// Pops a count and that many arguments, the first of them first.
PoolArray<Value> popArguments(Movie& movie);

// What a call has come to.
enum class Called : std::uint8_t {
    answered,  // the result is on the stack
    opened,    // a level was opened: the running list goes on behind it
};

Called callFunction(Movie& movie);  // the action CallFunction
Called callMethod(Movie& movie);    // the action CallMethod
Called newObjectOf(Movie& movie);   // the action NewObject
Called callFrame(Movie& movie);     // the action Call

}  // namespace qel
