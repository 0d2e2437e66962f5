#include "script/interpreter.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "format/action_codes.h"
#include "movie/content_reader.h"
#include "movie/movie.h"
#include "player/engine_services.h"
#include "script/calls.h"
#include "script/clip_object.h"
#include "script/clip_paths.h"
#include "script/comparison.h"
#include "script/conversions.h"
#include "script/define_function.h"
#include "script/frame_navigation.h"
#include "script/numbers.h"
#include "script/object_methods.h"
#include "script/scope.h"
#include "script/script_state.h"

namespace qel {
namespace {

// One action's operands and the machine around it.
class Interpreter {
  public:
    Interpreter(Movie& movie, ActionList& list) : movie_(movie), scripts_(movie.scripts), list_(list) {}

    bool run();

  private:
    ScriptMemory& memory() { return scripts_.memory; }
    std::span<const std::uint8_t> code() const { return list_.code->bytes.span(); }
    bool ended() const { return scripts_.memory.exhausted || failed(scripts_.failure); }

    void pushNumber(double number) { push(movie_, Value::number(memory(), number)); }
    void pushBoolean(bool value) { push(movie_, Value(value)); }
    void pushText(TextHold text) {
        spendText(scripts_, text.view().size());
        push(movie_, Value::text(memory(), std::move(text)));
    }
    double popNumber() { return numericValue(pop(movie_)); }

    Called perform(Action action, ContentReader operands);
    bool performArithmetic(Action action);
    bool performLogic(Action action);
    bool performText(Action action);
    bool performVariables(Action action, ContentReader& operands);
    bool performTimeline(Action action, ContentReader& operands);
    void subtract(const Value& b, const Value& a);
    void divide(double b, double a);
    void extractText();
    void addValues();
    void pushEntries(ContentReader operands);
    bool pushEntry(ContentReader& operands);
    void readConstants(ContentReader operands);
    void storeRegister(ContentReader operands);
    void setTarget(const Value& path);
    void goToLabel(std::string_view label);
    void goToFrame2(bool play);
    void jump(std::int32_t offset);

    Movie& movie_;
    ScriptContext& scripts_;
    ActionList& list_;
};

std::string_view textOf(ContentReader& operands) {
    const std::span<const std::uint8_t> rest = operands.rest();
    std::size_t length = 0;
    while (length < rest.size() && rest[length] != 0) ++length;
    operands.skip(std::min(length + 1, rest.size()));
    return {reinterpret_cast<const char*>(rest.data()), length};
}

bool Interpreter::run() {
    while (!scripts_.returned && list_.at < code().size()) {
        if (scripts_.memory.actionsLeft == 0) scripts_.failure = Result::outOfMemory;
        if (ended()) return true;
        --scripts_.memory.actionsLeft;
        ContentReader reader(code().subspan(list_.at));
        const std::uint8_t action = reader.u8();
        if (Action{action} == Action::end) return true;
        const std::uint32_t length = action >= firstActionWithLength ? reader.u16() : 0u;
        const std::span<const std::uint8_t> operands = reader.take(length);
        if (!reader.ok()) return true;  // the code is cut short
        list_.at += static_cast<std::uint32_t>(reader.cursor());
        if (perform(Action{action}, ContentReader(operands)) == Called::opened) return false;
    }
    return true;
}

// A place outside the code ends the list.
void Interpreter::jump(std::int32_t offset) {
    const std::int64_t to = std::int64_t{list_.at} + offset;
    const auto size = static_cast<std::int64_t>(code().size());
    list_.at = static_cast<std::uint32_t>(to < 0 || to > size ? size : to);
}

// --- Push and the constants

bool Interpreter::pushEntry(ContentReader& operands) {
    switch (static_cast<PushType>(operands.u8())) {
        case PushType::text: pushText(makeText(memory(), textOf(operands))); break;
        case PushType::single: {
            const std::uint32_t bits = operands.u32();
            if (operands.ok()) pushNumber(std::bit_cast<float>(bits));
            break;
        }
        case PushType::null: push(movie_, Value::constant(ValueType::null)); break;
        case PushType::undefined: push(movie_, {}); break;
        case PushType::registerValue: {
            const std::size_t index = operands.u8();
            if (operands.ok())
                push(movie_, index < ScriptContext::registerCount ? scripts_.registers[index].copy() : Value());
            break;
        }
        case PushType::boolean: {
            const std::uint8_t truth = operands.u8();
            if (operands.ok() && truth <= 1) pushBoolean(truth == 1);
            break;
        }
        case PushType::real: {
            const std::uint32_t high = operands.u32(), low = operands.u32();
            if (!operands.ok()) break;
            constexpr std::uint32_t quietNan = 0x7FF8, infinity = 0x7FF0, negativeInfinity = 0xFFF0;
            switch (high >> 16) {
                case quietNan: push(movie_, Value::constant(ValueType::notANumber)); break;
                case infinity: push(movie_, Value::constant(ValueType::infinity)); break;
                case negativeInfinity: push(movie_, Value::constant(ValueType::negativeInfinity)); break;
                default: pushNumber(std::bit_cast<double>(std::uint64_t{high} << 32 | low)); break;
            }
            break;
        }
        case PushType::integer: {
            const auto number = static_cast<std::int32_t>(operands.u32());
            if (operands.ok()) pushNumber(number);
            break;
        }
        case PushType::constant: {
            const std::uint32_t index = operands.u8();
            if (!operands.ok()) break;
            const ConstantPool* pool = list_.constants.get();
            push(movie_, pool && index < pool->texts.size() ? pool->texts[index].copy() : Value());
            break;
        }
        default: break;  // only the type byte
    }
    return operands.ok();
}

void Interpreter::pushEntries(ContentReader operands) {
    while (operands.available(1) && pushEntry(operands) && !ended()) spend(scripts_, 1);
    if (!operands.ok()) list_.at = static_cast<std::uint32_t>(code().size());  // cut short
}

void Interpreter::readConstants(ContentReader operands) {
    const std::uint32_t count = operands.u8();
    operands.u8();
    PoolPtr<ConstantPool> pool = makePooled<ConstantPool>(movie_.pool);
    if (!pool || failed(pool->texts.reserve(movie_.pool, count))) {
        memory().exhausted = true;
        return;
    }
    pool->pool = &movie_.pool;
    for (std::uint32_t i = 0; i < count && operands.available(1); ++i) {
        const std::string_view text = textOf(operands);
        constexpr unsigned char lastTag = 11;
        const bool readsAsTag = !text.empty() && static_cast<unsigned char>(text[0]) <= lastTag;
        pool->texts.appendReserved(Value::text(memory(), readsAsTag ? "Not supported string" : text));
    }
    list_.constants = Shared<ConstantPool>(pool.release());
}

void Interpreter::storeRegister(ContentReader operands) {
    const std::uint32_t index = operands.u8();
    if (!operands.ok() || index >= ScriptContext::registerCount || scripts_.stack.empty()) return;
    scripts_.registers[index] = scripts_.stack.back().copy();
}

// --- numbers and truth

void Interpreter::subtract(const Value& b, const Value& a) {
    const auto sign = [](const Value& value) {
        return value.is(ValueType::infinity) ? 1 : value.is(ValueType::negativeInfinity) ? -1 : 0;
    };
    const int signA = sign(a), signB = sign(b);
    const bool nan = a.is(ValueType::notANumber) || b.is(ValueType::notANumber);
    if (nan || (signA != 0 && signA == signB)) return push(movie_, Value::constant(ValueType::notANumber));
    const int result = signA != 0 ? signA : -signB;
    if (result == 0) return pushNumber(numericValue(a) - numericValue(b));
    push(movie_, Value::constant(result > 0 ? ValueType::infinity : ValueType::negativeInfinity));
}

void Interpreter::divide(double b, double a) {
    if (b != 0) return pushNumber(a / b);
    const ValueType result = a > 0 ? ValueType::infinity : a < 0 ? ValueType::negativeInfinity : ValueType::notANumber;
    push(movie_, Value::constant(result));
}

bool Interpreter::performArithmetic(Action action) {
    switch (action) {
        case Action::toInteger: pushNumber(truncated(popNumber())); return true;
        case Action::increment: pushNumber(popNumber() + 1); return true;
        case Action::decrement: pushNumber(popNumber() - 1); return true;
        case Action::randomNumber: {
            const double most = popNumber();
            const std::uint32_t limit = toUint32(most);
            pushNumber(most < 1 || limit == 0 ? 0 : nextRandom(scripts_.random) % limit);
            return true;
        }
        case Action::getTime: pushNumber(tickCount(*movie_.player) - scripts_.startTime); return true;
        case Action::subtract: {
            const Value b = pop(movie_), a = pop(movie_);
            subtract(b, a);
            return true;
        }
        case Action::add:
        case Action::multiply:
        case Action::divide:
        case Action::modulo:
        case Action::bitAnd:
        case Action::bitOr:
        case Action::bitXor:
        case Action::bitLeftShift:
        case Action::bitRightShift:
        case Action::bitUnsignedRightShift: break;
        default: return false;
    }
    const double b = popNumber(), a = popNumber();
    const std::uint32_t bitsA = toUint32(a), bitsB = toUint32(b);
    switch (action) {
        case Action::add: pushNumber(a + b); break;
        case Action::multiply: pushNumber(a * b); break;
        case Action::divide: divide(b, a); break;
        case Action::modulo: {
            const std::int32_t divisor = toInt32(b);
            if (divisor == 0)
                push(movie_, Value::constant(ValueType::notANumber));
            else
                pushNumber(static_cast<double>(std::int64_t{toInt32(a)} % divisor));
            break;
        }
        case Action::bitAnd: pushNumber(static_cast<std::int32_t>(bitsA & bitsB)); break;
        case Action::bitOr: pushNumber(static_cast<std::int32_t>(bitsA | bitsB)); break;
        case Action::bitXor: pushNumber(static_cast<std::int32_t>(bitsA ^ bitsB)); break;
        case Action::bitLeftShift: pushNumber(static_cast<std::int32_t>(bitsA << (bitsB & 31))); break;
        case Action::bitRightShift: pushNumber(static_cast<std::int32_t>(bitsA) >> (bitsB & 31)); break;
        default: pushNumber(bitsA >> (bitsB & 31)); break;
    }
    return true;
}

bool Interpreter::performLogic(Action action) {
    switch (action) {
        case Action::logicalNot: pushBoolean(!toBoolean(pop(movie_))); return true;
        case Action::equals:
        case Action::less:
        case Action::logicalAnd:
        case Action::logicalOr:
        case Action::stringEquals:
        case Action::stringLess:
        case Action::equals2:
        case Action::less2: break;
        default: return false;
    }
    const Value b = pop(movie_), a = pop(movie_);
    const bool texts = a.is(ValueType::text) && b.is(ValueType::text);
    switch (action) {
        case Action::equals: pushBoolean(numericValue(a) == numericValue(b)); break;
        case Action::less: pushBoolean(numericValue(a) < numericValue(b)); break;
        case Action::logicalAnd: pushBoolean(toBoolean(a) && toBoolean(b)); break;
        case Action::logicalOr: pushBoolean(toBoolean(a) || toBoolean(b)); break;
        case Action::stringEquals: pushBoolean(texts && a.asText().view() == b.asText().view()); break;
        case Action::stringLess: pushBoolean(texts && textLess(a.asText().view(), b.asText().view())); break;
        case Action::equals2: pushBoolean(equalValues(a, b)); break;
        default: push(movie_, lessValues(memory(), a, b)); break;
    }
    return true;
}

// --- texts

void Interpreter::extractText() {
    const double count = popNumber(), index = popNumber();
    const Value value = pop(movie_);
    if (!value.is(ValueType::text)) return push(movie_, {});
    const std::string_view text = value.asText().view();
    const auto length = static_cast<std::int64_t>(text.size());
    const std::int64_t start = std::clamp<std::int64_t>(std::int64_t{toInt32(index)} - 1, 0, length);
    std::int64_t bytes = toInt32(count);
    if (bytes < 0 || start + bytes > length) bytes = length - start;
    pushText(makeText(memory(), text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(bytes))));
}

// Texts are joined, except that an empty one counts as a number.
void Interpreter::addValues() {
    const Value b = pop(movie_), a = pop(movie_);
    constexpr unsigned char leastFirstByte = 14;
    const auto joins = [](const Value& value) {
        return value.is(ValueType::text) && static_cast<unsigned char>(value.asText().bytes[0]) >= leastFirstByte;
    };
    if (!joins(a) && !joins(b)) return pushNumber(numericValue(a) + numericValue(b));
    const TextHold first = toText(movie_, a), second = toText(movie_, b);
    if (first && second) pushText(joinTexts(memory(), first.view(), second.view()));
}

bool Interpreter::performText(Action action) {
    switch (action) {
        case Action::stringLength: {
            const Value value = pop(movie_);
            if (value.is(ValueType::text))
                pushNumber(value.asText().length);
            else
                push(movie_, {});
            return true;
        }
        case Action::stringExtract: extractText(); return true;
        case Action::add2: addValues(); return true;
        case Action::stringAdd: {
            const TextHold b = toText(movie_, pop(movie_)), a = toText(movie_, pop(movie_));
            if (a && b) pushText(joinTexts(memory(), a.view(), b.view()));
            return true;
        }
        case Action::charToAscii:
        case Action::wideCharToAscii: {
            const TextHold text = toText(movie_, pop(movie_));
            const auto code = static_cast<std::int8_t>(text ? text->bytes[0] : 0);
            pushText(makeText(memory(), formatInteger(code).view()));
            return true;
        }
        case Action::asciiToChar:
        case Action::wideAsciiToChar: {
            const auto c = static_cast<char>(static_cast<std::uint8_t>(toUint32(popNumber())));
            pushText(makeText(memory(), {&c, 1}));
            return true;
        }
        case Action::typeOf: {
            const Value value = pop(movie_);
            pushText(makeText(memory(), typeName(movie_, value)));
            return true;
        }
        case Action::targetPath: {
            const Value value = pop(movie_);
            if (value.is(ValueType::clip))
                pushText(clipTargetPath(movie_, value.asAnchor()));
            else
                push(movie_, {});
            return true;
        }
        case Action::toNumber: push(movie_, toNumberValue(memory(), pop(movie_))); return true;
        case Action::toText: push(movie_, toTextValue(movie_, pop(movie_))); return true;
        default: return false;
    }
}

// --- variables and members

bool Interpreter::performVariables(Action action, ContentReader& operands) {
    switch (action) {
        case Action::getVariable: push(movie_, getVariable(movie_, nameOf(movie_, pop(movie_)))); return true;
        case Action::setVariable:
        case Action::defineLocal: {
            Value value = pop(movie_);
            const Name name = nameOf(movie_, pop(movie_));
            if (action == Action::setVariable)
                setVariable(movie_, name, std::move(value));
            else
                defineLocal(movie_, name, std::move(value));
            return true;
        }
        case Action::defineLocal2: defineLocal(movie_, nameOf(movie_, pop(movie_)), {}); return true;
        case Action::deleteVariable: deleteVariable(movie_, nameOf(movie_, pop(movie_))); return true;
        case Action::getMember: {
            const Value name = pop(movie_), object = pop(movie_);
            push(movie_, getMember(movie_, object, name));
            return true;
        }
        case Action::setMember: {
            Value value = pop(movie_);
            const Value name = pop(movie_), object = pop(movie_);
            setMember(movie_, object, name, std::move(value));
            return true;
        }
        case Action::getProperty: {
            const double number = popNumber();
            const Value path = pop(movie_);
            Target target;
            push(movie_, targetOf(movie_, path, target) ? getClipProperty(movie_, target, number) : Value());
            return true;
        }
        case Action::setProperty: {
            const Value value = pop(movie_);
            const double number = popNumber();
            const Value path = pop(movie_);
            Target target;
            if (targetOf(movie_, path, target)) setClipProperty(movie_, target, number, value);
            return true;
        }
        case Action::initArray: {
            PoolArray<Value> elements = popArguments(movie_);
            push(movie_, makeArray(movie_, elements.span()));
            return true;
        }
        case Action::push: pushEntries(operands); return true;
        case Action::constantPool: readConstants(operands); return true;
        case Action::storeRegister: storeRegister(operands); return true;
        case Action::defineFunction:
            if (!defineFunction(movie_, list_, operands)) list_.at = static_cast<std::uint32_t>(code().size());
            return true;
        default: return false;
    }
}

// --- the timeline

void Interpreter::setTarget(const Value& path) {
    if (!path.is(ValueType::text)) return;
    const std::string_view text = path.asText().view();
    if (text.empty()) {
        if (!scripts_.targetSaved) return;
        scripts_.target = std::move(scripts_.savedTarget);
        scripts_.savedTarget = {};
        scripts_.targetSaved = false;
        return;
    }
    ClipInstance* clip = resolveTarget(movie_, text);
    ClipAnchor* anchor = clip ? anchorOf(movie_, *clip) : nullptr;
    if (!anchor) return;
    scripts_.savedTarget = scripts_.target;
    scripts_.target = Target(anchor);
    scripts_.targetSaved = true;
}

// Clips that have no such label go to their first frame; they play on where Play follows.
void Interpreter::goToLabel(std::string_view label) {
    const std::int32_t frame = labelFrame(movie_, scripts_.target, label);
    const bool plays = list_.at < code().size() && code()[list_.at] == static_cast<std::uint8_t>(Action::play);
    if (scripts_.target.clip())
        gotoFrame(movie_, scripts_.target, std::max(frame, 0) + 1.0, plays ? AfterGoto::play : AfterGoto::stop);
    else if (frame >= 0)
        gotoFrame(movie_, scripts_.target, frame + 1.0, AfterGoto::stop);
    stopAllSounds(movie_);
}

void Interpreter::goToFrame2(bool play) {
    const Value value = pop(movie_);
    double frame = 0;
    if (value.is(ValueType::number)) frame = truncated(value.asNumber());
    if (value.is(ValueType::text)) {
        const std::int32_t labelled = labelFrame(movie_, Target(), value.asText().view());
        frame = labelled >= 0 ? labelled + 1.0 : truncated(numericValue(value));
    }
    gotoFrame(movie_, scripts_.target, frame, play ? AfterGoto::play : AfterGoto::stop);
}

bool Interpreter::performTimeline(Action action, ContentReader& operands) {
    const Target target = scripts_.target;
    const double current = currentFrameOf(movie_, target);
    switch (action) {
        case Action::play:
        case Action::stop: setStopped(movie_, target, action == Action::stop); return true;
        case Action::stopSounds: stopAllSounds(movie_); return true;
        case Action::nextFrame:
            if (current != frameCountOf(movie_, target)) gotoFrame(movie_, target, current + 1, AfterGoto::stop);
            return true;
        case Action::prevFrame: gotoFrame(movie_, target, current - 1, AfterGoto::stop); return true;
        case Action::gotoFrame: {
            const std::uint32_t frame = operands.u16();
            if (operands.ok()) gotoFrame(movie_, target, frame + 1.0, AfterGoto::stop);
            return true;
        }
        case Action::gotoLabel: goToLabel(textOf(operands)); return true;
        case Action::gotoFrame2: goToFrame2(operands.u8() != 0); return true;
        case Action::setTarget: setTarget(Value::text(memory(), textOf(operands))); return true;
        case Action::setTarget2: setTarget(pop(movie_)); return true;
        default: return false;
    }
}

Called Interpreter::perform(Action action, ContentReader operands) {
    switch (action) {
        case Action::callFunction: return callFunction(movie_);
        case Action::callMethod: return callMethod(movie_);
        case Action::newObject: return newObjectOf(movie_);
        case Action::call: return callFrame(movie_);
        case Action::returnValue: scripts_.returned = true; return Called::answered;
        case Action::jump:
        case Action::branchIf: {
            const auto offset = static_cast<std::int16_t>(operands.u16());
            const bool taken = action == Action::jump || toBoolean(pop(movie_));
            if (taken && operands.ok()) jump(offset);
            return Called::answered;
        }
        case Action::with: {
            const std::int32_t size = operands.u16();
            pop(movie_);
            jump(size);
            return Called::answered;
        }
        case Action::pushDuplicate: {
            Value value = pop(movie_);
            push(movie_, value.copy());
            push(movie_, std::move(value));
            return Called::answered;
        }
        case Action::stackSwap: {
            Value b = pop(movie_), a = pop(movie_);
            push(movie_, std::move(b));
            push(movie_, std::move(a));
            return Called::answered;
        }
        // Requests that the device takes and does not follow.
        case Action::dragRequest: {
            pop(movie_), pop(movie_);
            const Value constrain = pop(movie_);
            const bool zero = constrain.is(ValueType::number) && constrain.asNumber() == 0;
            for (int i = 0; !zero && i < 4; ++i) pop(movie_);
            return Called::answered;
        }
        case Action::duplicateRequest: pop(movie_), pop(movie_), pop(movie_); return Called::answered;
        case Action::getUrl2: pop(movie_); [[fallthrough]];
        case Action::pop:
        case Action::removeRequest:
        case Action::trace:
        case Action::waitForFrame2: pop(movie_); return Called::answered;
        default: break;
    }
    if (!performArithmetic(action) && !performLogic(action) && !performText(action) &&
        !performVariables(action, operands))
        performTimeline(action, operands);
    return Called::answered;
}

}  // namespace

bool runList(Movie& movie, ActionList& list) { return Interpreter(movie, list).run(); }

}  // namespace qel
