// Other engines that run the programs of bench/script_programs.h, for comparison.
#pragma once

#include <memory>

namespace qel::bench {

class ScriptPeer {
  public:
    virtual ~ScriptPeer() = default;
    // Runs the program, compiled before, from its beginning. Throws std::runtime_error for one that fails.
    virtual void run() = 0;
    // The global variable "r".
    virtual double result() = 0;
};

std::unique_ptr<ScriptPeer> luaPeer(const char* program);
std::unique_ptr<ScriptPeer> duktapePeer(const char* program);

}  // namespace qel::bench
