// `Math`: its constants and functions.
#pragma once

#include <optional>

#include "script/object_methods.h"

namespace qel {

std::optional<double> mathConstant(std::string_view name);
Value callMath(const MethodCall& call);

}  // namespace qel
