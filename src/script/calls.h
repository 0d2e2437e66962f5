// Calls: arguments off the stack, functions of the device, functions of scripts, constructors, called frames.
#pragma once

#include <span>

#include "script/action_list.h"
#include "script/value_stack.h"

namespace qel {

struct Movie;

using Arguments = std::span<Value>;

// The stack. What is popped off an empty one is `undefined`.
void push(Movie& movie, Value value);
Value pop(Movie& movie);

// How many arguments lie on the stack: a number that stands above them.
std::uint32_t popCount(ValueStack& stack);

// That many arguments in one row, popped when this ends; the topmost is the first. While this lives, nothing else
// touches the stack.
class CallArguments {
  public:
    CallArguments(Movie& movie, std::uint32_t count);
    ~CallArguments() { stack_.drop(onStack_); }
    CallArguments(const CallArguments&) = delete;

    Arguments values() { return values_; }

  private:
    ValueStack& stack_;
    std::uint32_t onStack_ = 0;
    PoolArray<Value> elsewhere_;  // where more are asked for than the stack has
    Arguments values_;
};

// What a call has come to.
enum class Called : std::uint8_t {
    answered,  // the result is on the stack
    opened,    // a level was opened: the running list goes on behind it
};

Called callFunction(Movie& movie, const Name& name);  // the action CallFunction, behind its name
Called callMethod(Movie& movie, const Name& name);    // the action CallMethod, the same
Called newObjectOf(Movie& movie);                     // the action NewObject
Called callFrame(Movie& movie);                       // the action Call

}  // namespace qel
