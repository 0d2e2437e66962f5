#include "script/calls.h"

#include <algorithm>

#include "format/frame_items.h"
#include "movie/content_reader.h"
#include "movie/movie.h"
#include "player/engine_services.h"
#include "script/conversions.h"
#include "script/frame_navigation.h"
#include "script/list_queue.h"
#include "script/native_functions.h"
#include "script/numbers.h"
#include "script/object_methods.h"
#include "script/scope.h"
#include "script/script_state.h"

namespace qel {
namespace {

// Takes arguments off the stack for a function's parameters; those that are missing are `undefined`.
void bindParameters(Movie& movie, ScriptFunction& function, std::uint32_t count) {
    ValueStack& stack = movie.scripts.stack;
    const std::uint32_t onStack = std::min(count, stack.size());
    for (std::uint32_t i = 0; i < function.parameters.size(); ++i)
        defineIn(movie, function.locals, function.parameters[i], i < onStack ? std::move(stack.top(i)) : Value());
    stack.drop(onStack);
}

// Opens a level with a call of a script's function.
Called openCall(Movie& movie, ScriptFunction& function, std::uint32_t count, ListKind kind, Value thisObject) {
    ScriptContext& scripts = movie.scripts;
    if (scripts.level >= ScriptContext::mostLevels) {
        failRun(scripts, Result::outOfMemory);
        return Called::answered;
    }
    spend(scripts, function.parameters.size());
    bindParameters(movie, function, count);
    ActionLevel& level = scripts.levels[scripts.level];
    ActionList* list = addList(movie, level, function.code, CodeOwner::function, scripts.target);
    if (!list) return Called::answered;
    list->function = &function;
    list->kind = kind;
    list->thisObject = std::move(thisObject);
    list->constants = function.constants;
    ++scripts.level;
    return Called::opened;
}

Called give(Movie& movie, Value result) {
    push(movie, std::move(result));
    return Called::answered;
}

// Opens a level with a constructor. The new object has what the function's prototype has, before the code runs.
Called construct(Movie& movie, ScriptFunction& function, std::uint32_t count, const Value& object) {
    const Called called = openCall(movie, function, count, ListKind::constructor, object.copy());
    VariableList& prototype = function.prototype.properties;
    spend(movie.scripts, prototype.size());
    for (std::uint32_t i = 0; called == Called::opened && i < prototype.size(); ++i)
        setPropertyValue(movie.scripts.memory, object.asObject(), prototype[i].name, prototype[i].value.copy());
    return called;
}

// The bytes of a called block: part of a sprite's timeline, or of the content.
bool readBlock(Movie& movie, std::uint32_t frame, PoolArray<std::uint8_t>& bytes) {
    Pool& pool = *movie.scripts.memory.uncharged;
    if (const ClipInstance* clip = movie.scripts.target.clip()) {
        const Sprite& sprite = *clip->sprite;
        for (const SpriteBlock& block : sprite.blocks) {
            if (block.id != frame) continue;
            const std::span<const std::uint8_t> timeline = sprite.timeline.span();
            if (block.offset > timeline.size() || block.length > timeline.size() - block.offset) return true;
            return !failed(bytes.assign(pool, timeline.subspan(block.offset, block.length)));
        }
        return true;
    }
    for (const BlockEntry& block : movie.scripts.blocks) {
        if (block.id != frame) continue;
        if (failed(bytes.assignZeros(pool, block.length))) return false;
        if (readContent(*movie.player, block.offset, bytes.span())) return true;
        failRun(movie.scripts, Result::badContent);
        return false;
    }
    return true;
}

// Every item of a block is code, whatever its type.
void queueItems(Movie& movie, ContentReader items, ActionLevel& level) {
    while (items.available(1) && !movie.scripts.memory.exhausted) {
        const unsigned head = items.u8(), type = head >> 4;
        std::uint32_t length = head & longItemLength;
        if (length == longItemLength) length = items.littleEndian(itemLengthBytes(type));
        const std::span<const std::uint8_t> code = items.take(length);
        if (!items.ok()) return;
        addList(movie, level, shareCode(movie, code), CodeOwner::list, movie.scripts.target);
    }
}

}  // namespace

void push(Movie& movie, Value value) { movie.scripts.stack.push(std::move(value)); }
Value pop(Movie& movie) { return movie.scripts.stack.pop(); }

std::uint32_t popCount(ValueStack& stack) { return toUint16(numericValue(stack.pop())); }

CallArguments::CallArguments(Movie& movie, std::uint32_t count) : stack_(movie.scripts.stack) {
    ScriptMemory& memory = movie.scripts.memory;
    if (count <= stack_.size()) {
        onStack_ = count;
        values_ = stack_.topmost(count);
        std::ranges::reverse(values_);
        return;
    }
    memory.spend(count);
    if (failed(elsewhere_.reserve(*memory.uncharged, count))) {
        memory.exhausted = true;
        return;
    }
    for (std::uint32_t i = 0; i < count; ++i) elsewhere_.appendReserved(stack_.pop());
    values_ = elsewhere_.span();
}

Called callFunction(Movie& movie, const Name& name) {
    if (!name) return Called::answered;
    const std::uint32_t count = popCount(movie.scripts.stack);
    if (name->function && !isNativeFunction(name->known))
        return openCall(movie, *name->function, count, ListKind::call, {});
    Value result;
    {
        CallArguments arguments(movie, count);
        callNative(movie, *name, arguments.values(), result);
    }
    return give(movie, std::move(result));
}

Called callMethod(Movie& movie, const Name& name) {
    if (!name) return Called::answered;
    const Value object = pop(movie);
    const std::uint32_t count = popCount(movie.scripts.stack);
    const bool isUsers = hasUserMethods(object, name);
    const Value* method = isUsers ? propertyOf(object.asObject(), name) : nullptr;
    if (method && method->is(ValueType::function))
        return openCall(movie, method->asFunction(), count, ListKind::method, object.copy());
    Value result;
    {
        CallArguments arguments(movie, count);
        if (!isUsers) result = callBuiltIn({movie, object, name, arguments.values()});
    }
    return give(movie, std::move(result));
}

Called newObjectOf(Movie& movie) {
    const Name name = nameOf(movie, pop(movie));
    if (!name) return Called::answered;
    const std::uint32_t count = popCount(movie.scripts.stack);
    Value made;
    if (isBuiltInClass(name.view())) {
        CallArguments arguments(movie, count);
        made = constructBuiltIn(movie, name.view(), arguments.values());
    } else {
        ScriptObject* object = newObject(movie.scripts.objects, name.view());
        if (!object) return Called::answered;
        made = Value::object(*object);
        if (name->function) return construct(movie, *name->function, count, made);
        CallArguments unused(movie, count);
    }
    return give(movie, std::move(made));
}

Called callFrame(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    const Value frame = pop(movie);
    if (scripts.level >= ScriptContext::mostLevels) {
        failRun(scripts, Result::outOfMemory);
        return Called::answered;
    }
    // A label names the root's frame itself; numbers count from 1.
    std::int32_t index = -1;
    if (frame.is(ValueType::text)) index = labelFrame(movie, Target(), frame.asText().view());
    if (index < 0) index = wrap32(std::int64_t{toInt32(numericValue(frame))} - 1);
    PoolArray<std::uint8_t> bytes;
    if (index >= 0 && !readBlock(movie, static_cast<std::uint32_t>(index), bytes)) {
        if (!failed(scripts.failure)) scripts.memory.exhausted = true;
        return Called::answered;
    }
    spend(scripts, bytes.size());
    ActionLevel& level = scripts.levels[scripts.level];
    queueItems(movie, ContentReader(bytes.span()), level);
    if (level.count == 0) return Called::answered;
    ++scripts.level;
    return Called::opened;
}

}  // namespace qel
