// Members and methods of the built-in classes.
#pragma once

#include "script/calls.h"

namespace qel {

struct MethodCall {
    Movie& movie;
    const Value& object;
    const Name& name;
    Arguments arguments;
};

// What an object of a script has under the method's name, `undefined` where it has none. Null: the class of the object
// says what its methods are.
const Value* userMethod(const MethodCall& call);

// `undefined` where the method gives nothing.
Value callBuiltIn(const MethodCall& call);

// The actions GetMember and SetMember.
Value getMember(Movie& movie, const Value& object, const Name& name);
void setMember(Movie& movie, const Value& object, const Name& name, Value value);

// An object of a built-in class. False: the class is a script's.
bool constructBuiltIn(Movie& movie, std::string_view className, Arguments arguments, Value& made);

// A new Array with these elements. `undefined` when memory is exhausted.
Value makeArray(Movie& movie, Arguments elements);

}  // namespace qel
