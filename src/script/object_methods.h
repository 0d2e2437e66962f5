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

// Whether what a value does under a method's name is a property of its own; else its class says what its methods are.
bool hasUserMethods(const Value& object, const Name& method);

// `undefined` where the method gives nothing.
Value callBuiltIn(const MethodCall& call);

// The actions GetMember and SetMember.
Value getMember(Movie& movie, const Value& object, const Name& name);
void setMember(Movie& movie, const Value& object, const Name& name, Value value);

// An object of a class that is no script's; `undefined` when memory is exhausted.
bool isBuiltInClass(std::string_view name);
Value constructBuiltIn(Movie& movie, std::string_view className, Arguments arguments);

// A new Array with these elements. `undefined` when memory is exhausted.
Value makeArray(Movie& movie, Arguments elements);

}  // namespace qel
