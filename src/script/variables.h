// Variables and properties: names with values, in the order in which they came.
#pragma once

#include "script/name.h"
#include "script/value.h"

namespace qel {

struct Variable {
    Name name;
    Value value;
};

// Few are searched one by one, many by where their names lie. Each is charged as the device's node with its own
// copy of the name. Nothing is ever taken out.
class VariableList {
  public:
    VariableList() = default;
    VariableList(const VariableList&) = delete;
    ~VariableList() { clear(); }

    // The text is that of a name.
    Variable* find(const Text& name);
    // The same for one who asks again and again: `hint` is where it was found last time, here or in another list.
    Variable* find(const Text& name, std::uint32_t& hint) {
        if (hint < variables_.size() && &*variables_[hint].name == &name) return &variables_[hint];
        return variables_.empty() ? nullptr : search(name, hint);
    }
    Variable* find(const Name& name) { return find(*name); }
    const Variable* find(const Name& name) const { return const_cast<VariableList*>(this)->find(*name); }

    // A new one, with `undefined`. Null when memory is exhausted.
    Variable* add(ScriptMemory& memory, const Name& name);
    Variable* findOrAdd(ScriptMemory& memory, const Name& name) {
        Variable* found = name && !variables_.empty() ? find(name) : nullptr;
        return found ? found : add(memory, name);
    }

    void clear();
    std::uint32_t size() const { return variables_.size(); }
    Variable& operator[](std::uint32_t index) { return variables_[index]; }

  private:
    Variable* search(const Text& name, std::uint32_t& hint);
    bool index();
    void enter(std::uint32_t at);

    ScriptMemory* memory_ = nullptr;
    PoolArray<Variable> variables_;
    PoolArray<std::uint32_t> slots_;  // by name: an index plus 1, or 0; twice as many as variables at least
};

template <>
inline constexpr std::uint32_t charge<struct Variable> = 0;  // charged one by one

}  // namespace qel
