#include "script/script_context.h"

#include "script/script_state.h"

namespace qel {

ScriptContext::~ScriptContext() { forgetEverything(*this); }

}  // namespace qel
