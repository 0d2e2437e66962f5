#include "script/variables.h"

#include <algorithm>

namespace qel {
namespace {

constexpr std::uint32_t nodeCharge = 12;  // next, name, value
constexpr std::uint32_t mostUnindexed = 8;

std::uint32_t nameCharge(const Text& name) { return name.length + 1; }

}  // namespace

Variable* VariableList::find(const Text& name) {
    if (slots_.empty()) {
        for (Variable& variable : variables_)
            if (sameName(*variable.name.get(), name)) return &variable;
        return nullptr;
    }
    const std::uint32_t mask = slots_.size() - 1;
    for (std::uint32_t slot = name.hash & mask; slots_[slot] != 0; slot = (slot + 1) & mask) {
        Variable& variable = variables_[slots_[slot] - 1];
        if (sameName(*variable.name.get(), name)) return &variable;
    }
    return nullptr;
}

Variable* VariableList::add(ScriptMemory& memory, const TextHold& name) {
    memory_ = &memory;
    if (!name || !memory.take(nodeCharge)) return nullptr;
    if (!memory.take(nameCharge(*name.get()))) {
        memory.giveBack(nodeCharge);
        return nullptr;
    }
    Variable variable;
    variable.name = name;
    if (failed(variables_.append(*memory.uncharged, std::move(variable)))) {
        memory.giveBack(nodeCharge);
        memory.giveBack(nameCharge(*name.get()));
        memory.exhausted = true;
        return nullptr;
    }
    const bool grown = variables_.size() * 2 > slots_.size();
    if (variables_.size() > mostUnindexed && grown) {
        if (!index()) slots_.clear();  // one by one, then
    } else if (!slots_.empty()) {
        enter(variables_.size() - 1);
    }
    return &variables_.back();
}

Variable* VariableList::findOrAdd(ScriptMemory& memory, const TextHold& name) {
    Variable* found = name ? find(*name.get()) : nullptr;
    return found ? found : add(memory, name);
}

void VariableList::enter(std::uint32_t at) {
    const std::uint32_t mask = slots_.size() - 1;
    std::uint32_t slot = variables_[at].name->hash & mask;
    while (slots_[slot] != 0) slot = (slot + 1) & mask;
    slots_[slot] = at + 1;
}

bool VariableList::index() {
    std::uint32_t count = 4 * mostUnindexed;
    while (count < variables_.size() * 4) count *= 2;
    if (failed(slots_.assignZeros(*memory_->uncharged, count))) return false;
    for (std::uint32_t i = 0; i < variables_.size(); ++i) enter(i);
    return true;
}

void VariableList::clear() {
    for (const Variable& variable : variables_) {
        memory_->giveBack(nodeCharge);
        memory_->giveBack(nameCharge(*variable.name.get()));
    }
    variables_.clear();
    slots_.clear();
}

}  // namespace qel
