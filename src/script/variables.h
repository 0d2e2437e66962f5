// Variables and properties: names with values, in the order in which they came.
#pragma once

#include "script/value.h"

namespace qel {

struct Variable {
    TextHold name;
    Value value;
};

// Few are searched one by one, many by the hashes of their names. Each is charged as the device's node with its own
// copy of the name. Nothing is ever taken out.
class VariableList {
  public:
    VariableList() = default;
    VariableList(const VariableList&) = delete;
    ~VariableList() { clear(); }

    Variable* find(const Text& name);
    const Variable* find(const Text& name) const { return const_cast<VariableList*>(this)->find(name); }

    // A new one, with `undefined`. Null when memory is exhausted.
    Variable* add(ScriptMemory& memory, const TextHold& name);
    Variable* findOrAdd(ScriptMemory& memory, const TextHold& name);

    void clear();
    std::uint32_t size() const { return variables_.size(); }
    Variable& operator[](std::uint32_t index) { return variables_[index]; }

  private:
    bool index();
    void enter(std::uint32_t at);

    ScriptMemory* memory_ = nullptr;
    PoolArray<Variable> variables_;
    PoolArray<std::uint32_t> slots_;  // by hash: an index plus 1, or 0; twice as many as variables at least
};

template <>
inline constexpr std::uint32_t charge<struct Variable> = 0;  // charged one by one

}  // namespace qel
