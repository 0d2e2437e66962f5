// The programs of the script benchmarks, each in three languages and doing the same work with global variables.
#pragma once

#include <span>

namespace qel::bench {

struct ScriptProgram {
    const char* name;
    double aim;            // what a run may cost with us, microseconds
    const char* variable;  // the global that holds the result
    const char* result;    // as a text
    const char* listing;   // of actions: docs/action-code.md
    const char* lua;
    const char* javaScript;
};

std::span<const ScriptProgram> scriptPrograms();

}  // namespace qel::bench
