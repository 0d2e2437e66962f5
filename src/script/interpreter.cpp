#include "script/interpreter.h"

#include "movie/content_reader.h"
#include "movie/movie.h"
#include "script/calls.h"
#include "script/clip_object.h"
#include "script/comparison.h"
#include "script/conversions.h"
#include "script/define_function.h"
#include "script/number_actions.h"
#include "script/object_methods.h"
#include "script/scope.h"
#include "script/script_state.h"
#include "script/text_actions.h"
#include "script/timeline_actions.h"

namespace qel {
namespace {

// How a list comes to a halt.
enum class Halt : std::uint8_t {
    no,
    ended,
    called,  // a level was opened: the list goes on behind it
};

class Interpreter {
  public:
    Interpreter(Movie& movie, ActionList& list)
        : movie_(movie), scripts_(movie.scripts), stack_(movie.scripts.stack), list_(list) {}

    // The list ends, or goes on later.
    Halt run();

  private:
    ScriptMemory& memory() { return scripts_.memory; }
    std::span<const std::uint8_t> code() const { return list_.code->bytes.span(); }
    Program& program() { return list_.code->program; }

    void goTo(std::uint32_t place) { next_ = instructionAt(memory(), program(), code(), place); }
    Halt jump(Instruction& instruction);
    Halt perform(Instruction& instruction);
    Halt performOther(const Instruction& instruction);
    Halt behindCall(const Instruction& instruction, Called called);
    bool performPlainAction(Action action, ContentReader operands);
    bool performObjectAction(Action action);

    void push(Value value) { stack_.push(std::move(value)); }
    void pushNumber(double number) { push(Value::number(memory(), number)); }
    void pushText(const Name& text);
    void pushRegister(std::uint32_t index);
    void pushPoolText(std::uint32_t index);
    void storeRegister(ContentReader operands);
    void readConstants(ContentReader operands);

    const Name& nameOf(const Instruction& instruction) { return program().names[instruction.operand]; }
    void touchName(const Name& name);
    void getMemberAction(const Name& name);
    bool calculateInPlace(Operation operation);
    void calculate(Action action) { performNumberAction(movie_, action); }

    Movie& movie_;
    ScriptContext& scripts_;
    ValueStack& stack_;
    ActionList& list_;
    std::uint32_t next_ = 0;  // the next instruction
};

Halt Interpreter::run() {
    goTo(list_.at);
    Halt halt = Halt::no;
    while (halt == Halt::no && !memory().exhausted) {
        Instruction& instruction = program().instructions[next_++];
        if (memory().actionsLeft < instruction.count) {
            if (!failed(scripts_.failure)) failRun(scripts_, Result::outOfMemory);
            break;
        }
        memory().actionsLeft -= instruction.count;
        halt = perform(instruction);
    }
    return halt;
}

// --- values and names

void Interpreter::pushText(const Name& text) {
    memory().spend(text->length / 64);
    push(Value::text(memory(), text.text()));
}

void Interpreter::pushRegister(std::uint32_t index) {
    push(index < ScriptContext::registerCount ? scripts_.registers[index].copy() : Value());
}

void Interpreter::pushPoolText(std::uint32_t index) {
    const ConstantPool* pool = list_.constants.get();
    push(pool && index < pool->texts.size() ? pool->texts[index].copy() : Value());
}

// A name that an action takes as soon as it was pushed is on the device's stack for that moment.
void Interpreter::touchName(const Name& name) {
    if (stack_.makeRoom()) memory().touch(Value::textCharge(*name));
}

void Interpreter::storeRegister(ContentReader operands) {
    const std::uint32_t index = operands.u8();
    if (!operands.ok() || index >= ScriptContext::registerCount || stack_.size() == 0) return;
    scripts_.registers[index] = stack_.top().copy();
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
        const std::span<const std::uint8_t> rest = operands.rest();
        std::string_view text(reinterpret_cast<const char*>(rest.data()), rest.size());
        text = text.substr(0, text.find('\0'));
        operands.skip(std::min(text.size() + 1, rest.size()));
        constexpr unsigned char lastTag = 11;
        const bool readsAsTag = !text.empty() && static_cast<unsigned char>(text[0]) <= lastTag;
        memory().spend(1);
        pool->texts.appendReserved(
            Value::text(memory(), makeName(memory(), readsAsTag ? "Not supported string" : text).text()));
    }
    list_.constants = Shared<ConstantPool>(pool.release());
}

// --- variables and members

void Interpreter::getMemberAction(const Name& name) {
    const Value object = stack_.pop();
    push(getMember(movie_, object, name));
}

// --- jumps

Halt Interpreter::jump(Instruction& instruction) {
    if (instruction.memo.hint != 0) {
        next_ = instruction.memo.hint - 1;
        return Halt::no;
    }
    const std::uint32_t index = next_ - 1, generation = program().generation;
    goTo(instruction.operand);
    const bool stands = generation == program().generation;
    if (stands && !memory().exhausted) program().instructions[index].memo.hint = next_ + 1;
    return Halt::no;
}

Halt Interpreter::behindCall(const Instruction& instruction, Called called) {
    if (called == Called::answered) return Halt::no;
    list_.at = instruction.memo.next;
    return Halt::called;
}

// --- numbers

// Numbers take the place of numbers, which charges nothing. False: the operands are others.
bool Interpreter::calculateInPlace(Operation operation) {
    if (stack_.size() < 2 || !stack_.top().is(ValueType::number) || !stack_.top(1).is(ValueType::number)) return false;
    const double b = stack_.top().asNumber();
    Value& left = stack_.top(1);
    const double a = left.asNumber();
    switch (operation) {
        case Operation::add:
        case Operation::add2: left.setNumber(a + b); break;
        case Operation::subtract: left.setNumber(a - b); break;
        case Operation::multiply: left.setNumber(a * b); break;
        case Operation::less2: left = Value(a < b); break;
        default: left = Value(a == b); break;
    }
    stack_.drop();
    return true;
}

// --- every instruction

Halt Interpreter::perform(Instruction& instruction) {
    switch (instruction.operation) {
        case Operation::action: return performOther(instruction);
        case Operation::end: return Halt::ended;
        case Operation::nothing: return Halt::no;
        case Operation::pushText: pushText(nameOf(instruction)); return Halt::no;
        case Operation::pushNumber: pushNumber(instruction.number); return Halt::no;
        case Operation::pushConstant: push(Value::constant(ValueType(instruction.operand))); return Halt::no;
        case Operation::pushRegister: pushRegister(instruction.operand); return Halt::no;
        case Operation::pushPoolText: pushPoolText(instruction.operand); return Halt::no;
        case Operation::getNamed: {
            const Name& name = nameOf(instruction);
            const std::uint32_t charge = Value::textCharge(*name);
            if (!stack_.makeRoom() || !memory().take(charge)) return Halt::no;
            push(getVariable(movie_, name, instruction.memo.hint));
            memory().giveBack(charge);
            return Halt::no;
        }
        case Operation::getNamedMember:
            touchName(nameOf(instruction));
            getMemberAction(nameOf(instruction));
            return Halt::no;
        case Operation::callNamed:
            touchName(nameOf(instruction));
            return behindCall(instruction, callFunction(movie_, nameOf(instruction)));
        case Operation::callNamedMethod:
            touchName(nameOf(instruction));
            return behindCall(instruction, callMethod(movie_, nameOf(instruction)));
        case Operation::getVariable: {
            const Name name = qel::nameOf(movie_, stack_.pop());
            push(getVariable(movie_, name, instruction.memo.hint));
            return Halt::no;
        }
        case Operation::setVariable: {
            Value value = stack_.pop();
            const Name name = qel::nameOf(movie_, stack_.pop());
            setVariable(movie_, name, std::move(value), instruction.memo.hint);
            return Halt::no;
        }
        case Operation::getMember: getMemberAction(qel::nameOf(movie_, stack_.pop())); return Halt::no;
        case Operation::setMember: {
            Value value = stack_.pop();
            const Name name = qel::nameOf(movie_, stack_.pop());
            const Value object = stack_.pop();
            setMember(movie_, object, name, std::move(value));
            return Halt::no;
        }
        case Operation::callFunction: {
            const Name name = qel::nameOf(movie_, stack_.pop());
            return name ? behindCall(instruction, callFunction(movie_, name)) : Halt::no;
        }
        case Operation::callMethod: {
            const Name name = qel::nameOf(movie_, stack_.pop());
            return name ? behindCall(instruction, callMethod(movie_, name)) : Halt::no;
        }
        case Operation::returnValue: scripts_.returned = true; return Halt::ended;
        case Operation::jump: return jump(instruction);
        case Operation::branch: return toBoolean(stack_.pop()) ? jump(instruction) : Halt::no;
        case Operation::pop: stack_.pop(); return Halt::no;
        case Operation::add:
        case Operation::subtract:
        case Operation::multiply:
        case Operation::less2:
        case Operation::equals2:
            if (!calculateInPlace(instruction.operation)) calculate(instruction.action);
            return Halt::no;
        case Operation::add2:
            if (!calculateInPlace(instruction.operation)) {
                const Value b = stack_.pop(), a = stack_.pop();
                push(sumOrJoined(movie_, a, b));
            }
            return Halt::no;
        case Operation::increment:
        case Operation::decrement: {
            if (stack_.size() == 0 || !stack_.top().is(ValueType::number)) {
                calculate(instruction.action);
                return Halt::no;
            }
            const double by = instruction.operation == Operation::increment ? 1 : -1;
            stack_.top().setNumber(stack_.top().asNumber() + by);
            return Halt::no;
        }
        case Operation::logicalNot: calculate(instruction.action); return Halt::no;
    }
    return Halt::no;
}

Halt Interpreter::performOther(const Instruction& instruction) {
    const Memo memo = instruction.memo;
    const std::span<const std::uint8_t> operands = code().subspan(instruction.operand, memo.next - instruction.operand);
    switch (instruction.action) {
        case Action::newObject: return behindCall(instruction, newObjectOf(movie_));
        case Action::call: return behindCall(instruction, callFrame(movie_));
        case Action::with: {
            ContentReader reader(operands);
            const std::uint32_t size = reader.u16();
            stack_.pop();
            goTo(std::min<std::uint32_t>(memo.next + size, static_cast<std::uint32_t>(code().size())));
            return Halt::no;
        }
        case Action::defineFunction:
            goTo(defineFunction(movie_, list_, ContentReader(operands), memo.next));
            return Halt::no;
        default: break;
    }
    if (!performPlainAction(instruction.action, ContentReader(operands)) && !performObjectAction(instruction.action) &&
        !performNumberAction(movie_, instruction.action) && !performTextAction(movie_, instruction.action))
        performTimelineAction(movie_, instruction.action, ContentReader(operands), code().subspan(memo.next));
    return Halt::no;
}

// Actions that move values about, and requests that the device takes and does not follow.
bool Interpreter::performPlainAction(Action action, ContentReader operands) {
    switch (action) {
        case Action::constantPool: readConstants(operands); return true;
        case Action::storeRegister: storeRegister(operands); return true;
        case Action::pushDuplicate: {
            Value value = stack_.pop();
            push(value.copy());
            push(std::move(value));
            return true;
        }
        case Action::stackSwap: {
            Value b = stack_.pop(), a = stack_.pop();
            push(std::move(b));
            push(std::move(a));
            return true;
        }
        case Action::dragRequest: {
            stack_.pop(), stack_.pop();
            const Value constrain = stack_.pop();
            const bool zero = constrain.is(ValueType::number) && constrain.asNumber() == 0;
            for (int i = 0; !zero && i < 4; ++i) stack_.pop();
            return true;
        }
        case Action::duplicateRequest: stack_.pop(), stack_.pop(), stack_.pop(); return true;
        case Action::getUrl2: stack_.pop(), stack_.pop(); return true;
        case Action::removeRequest:
        case Action::trace:
        case Action::waitForFrame2: stack_.pop(); return true;
        case Action::getUrl:
        case Action::waitForFrame: return true;
        default: return false;
    }
}

bool Interpreter::performObjectAction(Action action) {
    switch (action) {
        case Action::defineLocal: {
            Value value = stack_.pop();
            defineLocal(movie_, qel::nameOf(movie_, stack_.pop()), std::move(value));
            return true;
        }
        case Action::defineLocal2: defineLocal(movie_, qel::nameOf(movie_, stack_.pop()), {}); return true;
        case Action::deleteVariable: deleteVariable(movie_, qel::nameOf(movie_, stack_.pop())); return true;
        case Action::getProperty: {
            const double number = numericValue(stack_.pop());
            const Value path = stack_.pop();
            Target target;
            push(targetOf(movie_, path, target) ? getClipProperty(movie_, target, number) : Value());
            return true;
        }
        case Action::setProperty: {
            const Value value = stack_.pop();
            const double number = numericValue(stack_.pop());
            const Value path = stack_.pop();
            Target target;
            if (targetOf(movie_, path, target)) setClipProperty(movie_, target, number, value);
            return true;
        }
        case Action::initArray: {
            Value array;
            {
                CallArguments elements(movie_);
                array = makeArray(movie_, elements.values());
            }
            push(std::move(array));
            return true;
        }
        default: return false;
    }
}

}  // namespace

bool runList(Movie& movie, ActionList& list) { return Interpreter(movie, list).run() != Halt::called; }

}  // namespace qel
