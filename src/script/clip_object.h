// Clips and the root as objects of scripts: their properties, members and methods.
#pragma once

#include "script/calls.h"

namespace qel {

// A property by its number; `undefined` for those that nobody has, and for clips that are gone.
Value getClipProperty(Movie& movie, const Target& target, double number);
void setClipProperty(Movie& movie, const Target& target, double number, const Value& value);

// A property, a variable or a child by its name.
Value getClipMember(Movie& movie, const Target& target, const Name& name);
void setClipMember(Movie& movie, const Target& target, const Name& name, Value value);

// `undefined` where the method gives nothing.
Value callClipMethod(Movie& movie, const Target& target, std::string_view method, Arguments arguments);

// What the actions GetProperty and SetProperty name. False: nothing.
bool targetOf(Movie& movie, const Value& value, Target& target);

}  // namespace qel
