// The script benchmarks: small programs run by our player, by Lua and by Duktape.
#pragma once

#include <cstdio>

namespace qel::bench {

// Names are script/PROGRAM/ours, script/PROGRAM/lua, script/PROGRAM/duktape.
void registerScriptBenchmarks();

// A table of what was measured, each program beside its peers and beside our aim; nothing when no program was run.
void printScriptSummary(std::FILE* to);

}  // namespace qel::bench
