#include "script/variables.h"

#include <algorithm>

namespace qel {
namespace {

constexpr std::uint32_t nodeCharge = 12;  // next, name, value
constexpr std::uint32_t mostUnindexed = 8;

// The device's two blocks: a node and a copy of the name.
std::uint32_t nodeAndNameCharge(const Text& name) { return nodeCharge + blockHeaderCharge + name.length + 1; }

// Where the search for a name begins. Content has no say in it, so it cannot make all names meet.
std::uint32_t placeOf(const Text& name) {
    const auto address = reinterpret_cast<std::uintptr_t>(&name);
    return static_cast<std::uint32_t>(address >> 5 ^ address >> 13);
}

}  // namespace

Variable* VariableList::find(const Text& name) {
    if (slots_.empty()) {
        for (Variable& variable : variables_)
            if (&*variable.name == &name) return &variable;
        return nullptr;
    }
    const std::uint32_t mask = slots_.size() - 1;
    for (std::uint32_t slot = placeOf(name) & mask; slots_[slot] != 0; slot = (slot + 1) & mask) {
        Variable& variable = variables_[slots_[slot] - 1];
        if (&*variable.name == &name) return &variable;
    }
    return nullptr;
}

Variable* VariableList::search(const Text& name, std::uint32_t& hint) {
    Variable* found = find(name);
    if (found) hint = static_cast<std::uint32_t>(found - variables_.begin());
    return found;
}

Variable* VariableList::add(ScriptMemory& memory, const Name& name) {
    memory_ = &memory;
    if (!name || !memory.take(nodeAndNameCharge(*name))) return nullptr;
    const std::uint32_t room = variables_.size() < 4 ? 4 : 2 * variables_.size();
    if (variables_.size() == variables_.capacity() && failed(variables_.reserve(*memory.uncharged, room))) {
        memory.giveBack(nodeAndNameCharge(*name));
        memory.exhausted = true;
        return nullptr;
    }
    variables_.makeReserved([&] { return Variable{name, {}}; });
    const bool grown = variables_.size() * 2 > slots_.size();
    if (variables_.size() > mostUnindexed && grown) {
        if (!index()) slots_.clear();  // one by one, then
    } else if (!slots_.empty()) {
        enter(variables_.size() - 1);
    }
    return &variables_.back();
}

void VariableList::enter(std::uint32_t at) {
    const std::uint32_t mask = slots_.size() - 1;
    std::uint32_t slot = placeOf(*variables_[at].name) & mask;
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
    for (const Variable& variable : variables_) memory_->giveBack(nodeAndNameCharge(*variable.name));
    variables_.truncate(0);
    if (!slots_.empty()) slots_.clear();
}

}  // namespace qel
