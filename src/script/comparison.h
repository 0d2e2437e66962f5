// The comparisons of scripts.
#pragma once

#include "script/value.h"

namespace qel {

bool equalValues(const Value& a, const Value& b);

// `undefined` where either is the constant NaN.
Value lessValues(ScriptMemory& memory, const Value& a, const Value& b);

// Texts by their bytes, unsigned.
bool textLess(std::string_view a, std::string_view b);

}  // namespace qel
