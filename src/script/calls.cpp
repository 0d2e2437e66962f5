#include "script/calls.h"

#include "format/frame_items.h"
#include "movie/content_reader.h"
#include "movie/movie.h"
#include "player/engine_services.h"
#include "script/clip_object.h"
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

// Opens a level with a call of a script's function. The arguments become its locals.
Called openCall(Movie& movie, ScriptFunction& function, Arguments arguments, ListKind kind, Value thisObject) {
    ScriptContext& scripts = movie.scripts;
    if (scripts.level >= ScriptContext::mostLevels) {
        scripts.failure = Result::outOfMemory;
        return Called::answered;
    }
    spend(scripts, function.parameters.size());
    for (std::uint32_t i = 0; i < function.parameters.size(); ++i) {
        Variable* local = function.locals.findOrAdd(scripts.memory, function.parameters[i]);
        if (!local) return Called::answered;
        Value value = i < arguments.size() ? std::move(arguments[i]) : Value();
        addUse(value);
        std::swap(local->value, value);
    }
    PoolPtr<ActionList> list = makeList(movie, function.code, scripts.target);
    if (!list) return Called::answered;
    list->function = &function;
    list->kind = kind;
    list->thisObject = std::move(thisObject);
    list->constants = function.constants;
    openLevel(movie, std::move(list));
    return Called::opened;
}

Called give(Movie& movie, Value result) {
    push(movie, std::move(result));
    return Called::answered;
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
        movie.scripts.failure = Result::badContent;
        return false;
    }
    return true;
}

// Every item of a block is code, whatever its type.
void queueItems(Movie& movie, ContentReader items, PoolArray<PoolPtr<ActionList>>& lists) {
    while (items.available(1)) {
        const unsigned head = items.u8(), type = head >> 4;
        std::uint32_t length = head & longItemLength;
        if (length == longItemLength) length = items.littleEndian(itemLengthBytes(type));
        const std::span<const std::uint8_t> code = items.take(length);
        if (!items.ok()) return;
        PoolPtr<ActionList> list = makeList(movie, copyCode(movie, code), movie.scripts.target);
        if (!list || failed(lists.append(*movie.scripts.memory.uncharged, std::move(list)))) {
            movie.scripts.memory.exhausted = true;
            return;
        }
    }
}

}  // namespace

void push(Movie& movie, Value value) {
    ScriptContext& scripts = movie.scripts;
    if (failed(scripts.stack.append(*scripts.memory.charged, std::move(value)))) scripts.memory.exhausted = true;
}

Value pop(Movie& movie) {
    PoolArray<Value>& stack = movie.scripts.stack;
    if (stack.empty()) return {};
    Value value = std::move(stack.back());
    stack.truncate(stack.size() - 1);
    return value;
}

PoolArray<Value> popArguments(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    const std::uint32_t count = toUint16(numericValue(pop(movie)));
    spend(scripts, count);
    PoolArray<Value> arguments;
    if (failed(arguments.reserve(*scripts.memory.uncharged, count))) {
        scripts.memory.exhausted = true;
        return arguments;
    }
    for (std::uint32_t i = 0; i < count; ++i) arguments.appendReserved(pop(movie));
    return arguments;
}

Called callFunction(Movie& movie) {
    const Name name = nameOf(movie, pop(movie));
    PoolArray<Value> arguments = popArguments(movie);
    if (!name) return Called::answered;
    Value result;
    if (callNative(movie, *name, arguments.span(), result)) return give(movie, std::move(result));
    ScriptFunction* function = name->function;
    if (!function) return give(movie, {});
    return openCall(movie, *function, arguments.span(), ListKind::call, {});
}

Called callMethod(Movie& movie) {
    const Name name = nameOf(movie, pop(movie));
    const Value object = pop(movie);
    PoolArray<Value> arguments = popArguments(movie);
    if (!name) return Called::answered;
    const MethodCall call{movie, object, name, arguments.span()};
    if (const Value* method = userMethod(call)) {
        if (!method->is(ValueType::function)) return give(movie, {});
        return openCall(movie, method->asFunction(), arguments.span(), ListKind::method, object.copy());
    }
    return give(movie, callBuiltIn(call));
}

Called newObjectOf(Movie& movie) {
    const Name name = nameOf(movie, pop(movie));
    PoolArray<Value> arguments = popArguments(movie);
    if (!name) return Called::answered;
    Value built;
    if (constructBuiltIn(movie, name.view(), arguments.span(), built)) return give(movie, std::move(built));
    ScriptObject* made = newObject(movie.scripts.objects, name.view());
    if (!made) return Called::answered;
    Value object = Value::object(*made);
    ScriptFunction* constructor = name->function;
    if (!constructor) return give(movie, std::move(object));
    const Called called = openCall(movie, *constructor, arguments.span(), ListKind::constructor, object.copy());
    VariableList& prototype = constructor->prototype.properties;
    spend(movie.scripts, prototype.size());
    for (std::uint32_t i = 0; called == Called::opened && i < prototype.size(); ++i)
        setPropertyValue(movie.scripts.memory, *made, prototype[i].name, prototype[i].value.copy());
    return called;
}

Called callFrame(Movie& movie) {
    ScriptContext& scripts = movie.scripts;
    const Value frame = pop(movie);
    if (scripts.level >= ScriptContext::mostLevels) {
        scripts.failure = Result::outOfMemory;
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
    PoolArray<PoolPtr<ActionList>> lists;
    queueItems(movie, ContentReader(bytes.span()), lists);
    if (lists.empty()) return Called::answered;
    openLevel(movie, std::move(lists));
    return Called::opened;
}

}  // namespace qel
