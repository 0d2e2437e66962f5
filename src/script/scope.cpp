#include "script/scope.h"

#include "movie/movie.h"
#include "script/clip_paths.h"
#include "script/scope_search.h"
#include "script/script_state.h"

namespace qel {
namespace {

// A name cut at its first colon: what it stands in, and the name behind.
struct Reference {
    enum class Where : std::uint8_t { scope, clip, nowhere } where = Where::scope;
    ClipInstance* clip = nullptr;
    Name name;
};

Reference referenceOf(Movie& movie, const Name& name) {
    if (!name->hasColon) return {.name = name};
    const std::string_view text = name.view();
    const std::size_t colon = text.find(':');
    const std::string_view path = text.substr(0, colon);
    spendText(movie.scripts, text.size());
    Reference reference{.name = makeName(movie.scripts.memory, text.substr(colon + 1))};
    reference.clip = resolveTarget(movie, path);
    if (reference.clip)
        reference.where = Reference::Where::clip;
    else if (path != "/")
        reference.where = Reference::Where::nowhere;
    return reference;
}

Variable* find(Movie& movie, const Reference& reference) {
    if (!reference.name || reference.where == Reference::Where::nowhere) return nullptr;
    const Name& name = reference.name;
    if (reference.where == Reference::Where::clip) return reference.clip->variables.find(name);
    std::uint32_t hint = 0;
    return findInScope(movie.scripts, runningList(movie), *name, hint);
}

// What stands for itself, whatever variables there are.
Value special(Movie& movie, KnownName name, bool& known) {
    ScriptContext& scripts = movie.scripts;
    known = true;
    switch (name) {
        case KnownName::self: {
            const ActionList* list = runningList(movie);
            if (list && !list->thisObject.is(ValueType::undefined)) return list->thisObject.copy();
            return targetValue(movie, scripts.target);
        }
        case KnownName::root:
        case KnownName::level0: return clipValue(movie, nullptr);
        case KnownName::parent: {
            const ClipInstance* clip = scripts.target.clip();
            return clip ? clipValue(movie, clipAround(*clip)) : Value();
        }
        case KnownName::math: return Value::object(scripts.math);
        case KnownName::string: return Value::object(scripts.string);
        case KnownName::number: return Value::object(scripts.number);
        case KnownName::key: return Value::object(scripts.key);
        default: known = false; return {};
    }
}

// The old value is let go of when the new one stands, as the device counts uses.
void replace(Variable& variable, Value value) {
    addUse(value);
    std::swap(variable.value, value);
    dropUse(value);
}

}  // namespace

ActionList* runningList(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    if (scripts.level == 0) return nullptr;
    ActionLevel& level = scripts.levels[scripts.level - 1];
    return level.current < level.count ? level.lists[level.current].get() : nullptr;
}

Value clipValue(Movie& movie, ClipInstance* clip) {
    ClipAnchor* anchor = clip ? anchorOf(movie, *clip) : nullptr;
    if (clip && !anchor) return {};
    return Value::clip(movie.scripts.memory, anchor);
}

Value targetValue(Movie& movie, const Target& target) { return Value::clip(movie.scripts.memory, target.anchor()); }

Value getVariable(Movie& movie, const Name& name, std::uint32_t& hint) {
    if (!name) return {};
    if (!name->hasColon && name->known == KnownName::none)
        if (const Variable* variable = findInScope(movie.scripts, runningList(movie), *name, hint))
            return variable->value.copy();
    const Reference reference = referenceOf(movie, name);
    if (!reference.name || reference.where == Reference::Where::nowhere) return {};
    const bool inScope = reference.where == Reference::Where::scope;
    if (inScope) {
        bool known = false;
        Value value = special(movie, reference.name->known, known);
        if (known) return value;
    }
    if (const Variable* variable = find(movie, reference)) return variable->value.copy();
    if (!inScope) return {};
    if (ScriptFunction* function = reference.name->function) return Value::function(*function);
    const Target& target = movie.scripts.target;
    if (target.isGone()) return {};
    ClipInstance* child = childClip(movie, target.clip(), reference.name.view());
    return child ? clipValue(movie, child) : Value();
}

const Value* findVariable(Movie& movie, const Name& name) {
    const Variable* variable = find(movie, referenceOf(movie, name));
    return variable ? &variable->value : nullptr;
}

void setVariable(Movie& movie, const Name& name, Value value, std::uint32_t& hint) {
    if (!name) return;
    if (!name->hasColon)
        if (Variable* variable = findInScope(movie.scripts, runningList(movie), *name, hint))
            return replace(*variable, std::move(value));
    const Reference reference = referenceOf(movie, name);
    if (reference.where == Reference::Where::nowhere) return;
    if (Variable* variable = find(movie, reference)) return replace(*variable, std::move(value));
    VariableList* list =
        reference.where == Reference::Where::clip ? &reference.clip->variables : targetList(movie.scripts);
    if (list) storeVariable(movie, *list, reference.name, std::move(value));
}

void defineLocal(Movie& movie, const Name& name, Value value) {
    VariableList* const locals = localsOf(runningList(movie));
    VariableList* const list = locals ? locals : targetList(movie.scripts);
    if (list) defineIn(movie, *list, name, std::move(value));
}

void defineIn(Movie& movie, VariableList& list, const Name& name, Value value) {
    if (!name) return;
    const Reference reference = referenceOf(movie, name);
    if (reference.where == Reference::Where::nowhere) return;
    Variable* variable = list.findOrAdd(movie.scripts.memory, reference.name);
    if (!variable) return;
    if (value.is(ValueType::object)) addUse(value);
    swap(variable->value, value);  // the device does not count that the old one goes
}

void deleteVariable(Movie& movie, const Name& name) {
    if (!name) return;
    Variable* variable = find(movie, referenceOf(movie, name));
    if (variable) replace(*variable, Value());
}

void storeVariable(Movie& movie, VariableList& list, const Name& name, Value value) {
    Variable* variable = list.findOrAdd(movie.scripts.memory, name);
    if (!variable) return;
    addUse(value);
    std::swap(variable->value, value);  // the device does not count that the old one goes
}

}  // namespace qel
