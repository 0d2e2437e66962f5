// Methods of texts.
#pragma once

#include "script/object_methods.h"

namespace qel {

Value callTextMethod(const MethodCall& call);
Value callStringClass(const MethodCall& call);  // `String` itself

}  // namespace qel
