#include "script/script_state.h"

#include "script/define_function.h"
#include "script/list_queue.h"

namespace qel {

void discardLists(ScriptContext& scripts) {
    for (ActionLevel& level : scripts.levels) emptyLevel(level);
    scripts.level = 0;
}

void forgetEverything(ScriptContext& scripts) {
    discardLists(scripts);
    scripts.stack.clear();
    for (Shared<ActionCode>& code : scripts.recentCode) code = {};
    for (Value& value : scripts.registers) value = Value();
    scripts.variables.clear();
    for (ScriptFunction* function = scripts.firstFunction; function; function = function->next) {
        function->name->function = nullptr;
        giveBackFunctionCharges(scripts.memory, *function);
        function->locals.clear();
        function->prototype.properties.clear();
        function->constants = {};
    }
    for (ScriptObject* object : {&scripts.math, &scripts.string, &scripts.number, &scripts.key})
        object->properties.clear();
    scripts.objects.clear();
    while (ScriptFunction* function = scripts.firstFunction) {
        scripts.firstFunction = function->next;
        PoolPtr<ScriptFunction>(function, PoolDelete{scripts.memory.charged}).reset();
    }
    scripts.lastFunction = nullptr;
    scripts.target = scripts.savedTarget = {};
    scripts.targetSaved = false;
}

}  // namespace qel
