#include "script/define_function.h"

#include "movie/movie.h"
#include "script/list_queue.h"
#include "script/scope.h"
#include "script/script_state.h"

namespace qel {
namespace {

// A zero-terminated name; false where its zero is missing.
bool readName(ContentReader& operands, ScriptMemory& memory, Name& name) {
    const std::span<const std::uint8_t> rest = operands.rest();
    std::size_t length = 0;
    while (length < rest.size() && rest[length] != 0) ++length;
    if (length == rest.size()) return false;
    name = makeName(memory, {reinterpret_cast<const char*>(rest.data()), length});
    operands.skip(length + 1);
    return true;
}

ScriptFunction* addFunction(Movie& movie, const Name& name) {
    ScriptContext& scripts = movie.scripts;
    PoolPtr<ScriptFunction> function = makePooled<ScriptFunction>(movie.pool);
    if (!function) {
        scripts.memory.exhausted = true;
        return nullptr;
    }
    function->name = name;
    name->function = function.get();
    function->prototype.kind = ObjectClass::prototype;
    function->prototype.className = makeText(scripts.memory, "prototype");
    (scripts.lastFunction ? scripts.lastFunction->next : scripts.firstFunction) = function.get();
    scripts.lastFunction = function.get();
    return function.release();
}

template <class Visit>
void visitCharges(const ScriptFunction& function, Visit visit) {
    visit(function.name->length + 1);
    for (const Name& parameter : function.parameters) visit(parameter->length + 1);
    visit(function.code->bytes.size() + 1);
}

struct FunctionDefinition {
    Name name;
    PoolArray<Name> parameters;
    std::uint32_t bodySize = 0;
};

// False where the operands are cut short or memory is exhausted.
bool readDefinition(Movie& movie, ContentReader& operands, FunctionDefinition& definition) {
    ScriptMemory& memory = movie.scripts.memory;
    if (!readName(operands, memory, definition.name)) return false;
    const std::uint32_t count = operands.u16();
    for (std::uint32_t i = 0; i < count; ++i) {
        Name parameter;
        if (!readName(operands, memory, parameter)) return false;
        if (!parameter || failed(definition.parameters.append(movie.pool, std::move(parameter)))) {
            memory.exhausted = true;
            return false;
        }
    }
    definition.bodySize = operands.u16();
    return operands.ok() && !memory.exhausted;
}

}  // namespace

std::uint32_t defineFunction(Movie& movie, const ActionList& list, ContentReader operands, std::uint32_t bodyAt) {
    ScriptContext& scripts = movie.scripts;
    const std::span<const std::uint8_t> code = list.code->bytes.span();
    const auto end = static_cast<std::uint32_t>(code.size());
    FunctionDefinition definition;
    if (!readDefinition(movie, operands, definition) || definition.bodySize > end - bodyAt) return end;
    const std::uint32_t next = bodyAt + definition.bodySize;
    spend(scripts, definition.parameters.size() + definition.bodySize / 64);
    Shared<ActionCode> body = shareCode(movie, code.subspan(bodyAt, definition.bodySize));
    if (!body) return end;
    ScriptFunction* function = definition.name->function;
    if (function)
        giveBackFunctionCharges(scripts.memory, *function);
    else
        function = addFunction(movie, definition.name);
    if (!function) return end;
    // Lists that run the old code keep it.
    function->parameters = std::move(definition.parameters);
    function->code = std::move(body);
    function->constants = list.constants;
    visitCharges(*function, [&](std::uint32_t bytes) { scripts.memory.charge(bytes); });
    return next;
}

void giveBackFunctionCharges(ScriptMemory& memory, const ScriptFunction& function) {
    visitCharges(function, [&](std::uint32_t bytes) { memory.giveBack(bytes); });
}

}  // namespace qel
