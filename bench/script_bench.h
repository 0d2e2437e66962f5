// The script benchmarks: small programs, run by the player's machine and by other engines.
#pragma once

#include <cstdio>

namespace qel::bench {

// Names are script/PROGRAM/ENGINE.
void registerScriptBenchmarks();

// A table of what was measured; nothing when no program ran.
void printScriptSummary(std::FILE* to);

}  // namespace qel::bench
