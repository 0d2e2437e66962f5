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

}  // namespace

bool defineFunction(Movie& movie, ActionList& list, ContentReader operands) {
    ScriptContext& scripts = movie.scripts;
    Name name;
    if (!readName(operands, scripts.memory, name)) return false;
    const std::uint32_t count = operands.u16();
    PoolArray<Name> parameters;
    for (std::uint32_t i = 0; i < count; ++i) {
        Name parameter;
        if (!readName(operands, scripts.memory, parameter)) return false;
        if (failed(parameters.append(movie.pool, std::move(parameter)))) {
            scripts.memory.exhausted = true;
            return true;
        }
    }
    const std::uint32_t size = operands.u16();
    const std::span<const std::uint8_t> rest = list.code->bytes.span().subspan(list.at);
    if (!operands.ok() || size > rest.size()) return false;
    spend(scripts, count + size / 64);
    Shared<ActionCode> body = copyCode(movie, rest.first(size));
    list.at += size;
    if (!name || !body) return true;
    ScriptFunction* function = name->function;
    if (!function) function = addFunction(movie, name);
    if (!function) return true;
    // Lists that run the old code keep it.
    function->parameters = std::move(parameters);
    function->code = std::move(body);
    function->constants = list.constants;
    return true;
}

}  // namespace qel
