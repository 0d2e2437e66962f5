// The stack of the machine.
#pragma once

#include "script/value.h"

namespace qel {

class ValueStack {
  public:
    explicit ValueStack(ScriptMemory& memory) : memory_(memory) {}

    // What cannot be pushed because memory is exhausted is dropped.
    void push(Value value) {
        if (makeRoom()) values_.appendReserved(std::move(value));
    }
    // `undefined` where there is nothing.
    Value pop() {
        if (values_.empty()) return {};
        Value value = std::move(values_.back());
        values_.truncate(values_.size() - 1);
        return value;
    }

    // Room for one more value, as the device makes it: twice as much when there is none.
    bool makeRoom() { return values_.size() < values_.capacity() || grow(); }
    bool reserve(std::uint32_t count) { return !failed(values_.reserve(*memory_.charged, count)); }

    std::uint32_t size() const { return values_.size(); }
    Value& top(std::uint32_t below = 0) { return values_[values_.size() - 1 - below]; }
    // The topmost values, the lowest of them first.
    std::span<Value> topmost(std::uint32_t count) { return values_.span().last(count); }
    void drop(std::uint32_t count = 1) { values_.truncate(values_.size() - count); }
    void clear() { values_.truncate(0); }

  private:
    bool grow() {
        if (reserve(2 * values_.capacity())) return true;
        memory_.exhausted = true;
        return false;
    }

    ScriptMemory& memory_;
    PoolArray<Value> values_;
};

}  // namespace qel
