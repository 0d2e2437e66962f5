// The functions of the device that scripts call by name.
#pragma once

#include "script/calls.h"

namespace qel {

// Calls the function of that name. False: there is none. `result` stays `undefined` where it gives nothing.
bool callNative(Movie& movie, const Text& name, Arguments arguments, Value& result);

// Whether a text is the name of a function, of the device or of a script.
bool namesFunction(Movie& movie, const Text& name);

}  // namespace qel
