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
    void pushNumber(double number) {
        if (makeRoom()) values_.makeReserved([&] { return Value::number(memory_, number); });
    }
    void pushPlainText(Text& name) {
        if (makeRoom()) values_.makeReserved([&] { return Value::plainText(memory_, name); });
    }
    void pushCopy(const Value& value) {
        if (makeRoom()) values_.makeReserved([&] { return value.copy(); });
    }
    void pushConstant(ValueType type) {
        if (makeRoom()) values_.makeReserved([&] { return Value::constant(type); });
    }

    // `undefined` where there is nothing.
    Value pop() {
        if (values_.empty()) return {};
        Value value = std::move(values_.back());
        values_.dropLast();
        return value;
    }

    // Room for one more value, or for a few, as the device makes it: twice as much when there is none.
    bool makeRoom() { return values_.size() < values_.capacity() || grow(); }
    bool makeRoom(std::uint32_t count) { return values_.size() + count <= values_.capacity() || grow(); }
    bool reserve(std::uint32_t count) { return !failed(values_.reserve(*memory_.charged, count)); }

    std::uint32_t size() const { return values_.size(); }
    Value& top(std::uint32_t below = 0) { return values_[values_.size() - 1 - below]; }
    // The topmost values, the lowest of them first.
    std::span<Value> topmost(std::uint32_t count) { return values_.span().last(count); }
    void drop() { values_.dropLast(); }
    void drop(std::uint32_t count) { values_.truncate(values_.size() - count); }
    // Whether the two topmost values are numbers.
    bool hasTwoNumbers() const {
        const std::uint32_t count = values_.size();
        return count >= 2 && values_[count - 1].is(ValueType::number) && values_[count - 2].is(ValueType::number);
    }
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
