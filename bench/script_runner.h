// What runs a program of the script benchmarks: our player, and two small interpreters that many products carry for the
// same purpose. All measured in the same run, they show what a machine of this kind can cost on the machine at hand.
#pragma once

#include <memory>
#include <string>

#include "script_programs.h"

namespace qel::bench {

// One program, compiled once. Everything throws std::runtime_error when the program fails.
class ScriptRunner {
  public:
    virtual ~ScriptRunner() = default;

    // Clears away what the run before has left, so that all runs begin alike.
    virtual void prepare() = 0;

    virtual void run() = 0;

    // What the program's variable holds, as a text; a whole number without a point.
    virtual std::string result() = 0;
};

std::unique_ptr<ScriptRunner> makePlayerRunner(const ScriptProgram& program);
std::unique_ptr<ScriptRunner> makeLuaRunner(const ScriptProgram& program);
std::unique_ptr<ScriptRunner> makeDuktapeRunner(const ScriptProgram& program);

}  // namespace qel::bench
