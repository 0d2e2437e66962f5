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
#include "script/scope_search.h"
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

// Texts that begin with such a byte read as what has that tag.
constexpr std::uint8_t lastTag = 11;

class Interpreter {
  public:
    Interpreter(Movie& movie, ActionList& list)
        : movie_(movie),
          scripts_(movie.scripts),
          memory_(movie.scripts.memory),
          stack_(movie.scripts.stack),
          list_(list),
          code_(list.code->bytes.span()),
          program_(list.code->program) {}

    // The list ends, or goes on later.
    Halt run();

  private:
    // The instruction at a place in the code; of no use when memory is exhausted.
    Instruction* instructionFor(std::uint32_t place) {
        const std::uint32_t index = instructionAt(memory_, program_, code_, place);
        return program_.instructions.begin() + index;
    }
    Instruction* findPlace(const Instruction& instruction);
    Instruction* placeOf(const Instruction& jump) {
        return jump.memo.hint != 0 ? program_.instructions.begin() + (jump.memo.hint - 1) : findPlace(jump);
    }
    Halt outOfWork();
    Halt performOther(const Instruction& instruction, Instruction*& next);
    Halt goOnBehind(const Instruction& call);
    bool performPlainAction(Action action, ContentReader operands);
    bool performObjectAction(Action action);

    void push(Value value) { stack_.push(std::move(value)); }
    void pushText(const Instruction& instruction);
    void pushRegister(std::uint32_t index);
    void pushPoolText(std::uint32_t index);
    void storeRegister(ContentReader operands);
    void readConstants(ContentReader operands);

    const Name& nameIn(const Instruction& instruction) { return program_.names[instruction.operand]; }
    Name popName() { return nameOf(movie_, stack_.pop()); }
    void touchName(const Name& name);
    void getNamed(Instruction& instruction);
    void getOtherNamed(const Instruction& instruction);
    void stepNamed(Instruction& instruction);
    void setVariableAction(std::uint32_t& hint);
    bool setNumber(std::uint32_t& hint);
    void getMemberAction(const Name& name);
    void setMemberAction();

    bool calculateInPlace(Operation operation);
    void calculate(Action action) { performNumberAction(movie_, action); }
    void addNumber(double number);
    void addValues();
    void step(const Instruction& instruction, double by);
    void pushWhetherLess(double number);
    bool popTruth();
    bool popWhetherLess();
    bool popWhetherLess(double number);

    Movie& movie_;
    ScriptContext& scripts_;
    ScriptMemory& memory_;
    ValueStack& stack_;
    ActionList& list_;
    std::span<const std::uint8_t> code_;
    Program& program_;
};

// --- values and names

void Interpreter::pushText(const Instruction& instruction) {
    Text& text = *instruction.name;
    if (text.length >= 64) memory_.spend(text.length / 64);
    if (static_cast<std::uint8_t>(text.bytes[0]) > lastTag || text.length == 0)
        stack_.pushPlainText(text);
    else
        push(Value::text(memory_, nameIn(instruction).text()));
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
    if (stack_.makeRoom()) memory_.touch(Value::textCharge(*name));
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
        memory_.exhausted = true;
        return;
    }
    pool->pool = &movie_.pool;
    for (std::uint32_t i = 0; i < count && operands.available(1); ++i) {
        const std::span<const std::uint8_t> rest = operands.rest();
        std::string_view text(reinterpret_cast<const char*>(rest.data()), rest.size());
        text = text.substr(0, text.find('\0'));
        operands.skip(std::min(text.size() + 1, rest.size()));
        const bool readsAsTag = !text.empty() && static_cast<unsigned char>(text[0]) <= lastTag;
        memory_.spend(1);
        pool->texts.appendReserved(
            Value::text(memory_, makeName(memory_, readsAsTag ? "Not supported string" : text).text()));
    }
    list_.constants = Shared<ConstantPool>(pool.release());
}

// --- variables and members

void Interpreter::getNamed(Instruction& instruction) {
    const Text& name = *instruction.name;
    const std::uint32_t charge = Value::textCharge(name);
    if (!stack_.makeRoom()) return;
    const Variable* variable = findInScope(scripts_, &list_, name, instruction.memo.hint);
    if (variable && variable->value.is(ValueType::number)) {
        memory_.touch(charge + blockHeaderCharge + Value::numberCharge);
        stack_.pushNumber(variable->value.asNumber());
    } else if (memory_.take(charge)) {
        if (variable)
            stack_.pushCopy(variable->value);
        else
            getOtherNamed(instruction);
        memory_.giveBack(charge);
    }
}

// A function, a clip, or nothing.
void Interpreter::getOtherNamed(const Instruction& instruction) { push(getVariable(movie_, nameIn(instruction))); }

// On the device's stack stand its name twice, then its name and its number.
void Interpreter::stepNamed(Instruction& instruction) {
    const Name& name = nameIn(instruction);
    const bool up = instruction.action == Action::increment;
    Variable* variable = findInScope(scripts_, &list_, *name, instruction.memo.hint);
    if (variable && variable->value.is(ValueType::number)) {
        if (!stack_.makeRoom(2)) return;
        memory_.touch(2 * (Value::textCharge(*name) + blockHeaderCharge) + Value::numberCharge);
        variable->value.setNumber(variable->value.asNumber() + (up ? 1 : -1));
        return;
    }
    push(Value::text(memory_, name.text()));
    touchName(name);
    push(getVariable(movie_, name));
    step(instruction, up ? 1 : -1);
    setVariableAction(instruction.memo.hint);
}

void Interpreter::setVariableAction(std::uint32_t& hint) {
    if (setNumber(hint)) return;
    Value value = stack_.pop();
    setVariable(movie_, popName(), std::move(value), hint);
}

// A number in the place of a number, which charges nothing. False: it is something else that is set.
bool Interpreter::setNumber(std::uint32_t& hint) {
    if (stack_.size() < 2 || !stack_.top().is(ValueType::number) || !stack_.top(1).is(ValueType::text)) return false;
    const Text& name = stack_.top(1).asText();
    if (!name.isName || name.hasColon) return false;
    Variable* variable = findInScope(scripts_, &list_, name, hint);
    if (!variable || !variable->value.is(ValueType::number)) return false;
    variable->value.setNumber(stack_.top().asNumber());
    stack_.drop();
    stack_.drop();
    return true;
}

void Interpreter::getMemberAction(const Name& name) {
    const Value object = stack_.pop();
    push(getMember(movie_, object, name));
}

void Interpreter::setMemberAction() {
    Value value = stack_.pop();
    const Name name = popName();
    const Value object = stack_.pop();
    setMember(movie_, object, name, std::move(value));
}

// --- jumps

Instruction* Interpreter::findPlace(const Instruction& instruction) {
    const auto index = static_cast<std::uint32_t>(&instruction - program_.instructions.begin());
    const std::uint32_t generation = program_.generation;
    Instruction* const target = instructionFor(instruction.operand);
    if (generation == program_.generation && !memory_.exhausted)
        program_.instructions[index].memo.hint = static_cast<std::uint32_t>(target - program_.instructions.begin()) + 1;
    return target;
}

Halt Interpreter::goOnBehind(const Instruction& call) {
    list_.at = call.memo.next;
    return Halt::called;
}

// --- numbers

// Numbers take the place of numbers, which charges nothing. False: the operands are others.
bool Interpreter::calculateInPlace(Operation operation) {
    if (!stack_.hasTwoNumbers()) return false;
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

void Interpreter::addNumber(double number) {
    if (stack_.size() != 0 && stack_.top().is(ValueType::number)) {
        if (stack_.makeRoom()) memory_.touch(Value::numberCharge);
        stack_.top().setNumber(stack_.top().asNumber() + number);
        return;
    }
    const Value b = Value::number(memory_, number), a = stack_.pop();
    push(sumOrJoined(movie_, a, b));
}

void Interpreter::addValues() {
    const Value b = stack_.pop(), a = stack_.pop();
    push(sumOrJoined(movie_, a, b));
}

void Interpreter::step(const Instruction& instruction, double by) {
    if (stack_.size() != 0 && stack_.top().is(ValueType::number))
        stack_.top().setNumber(stack_.top().asNumber() + by);
    else
        calculate(instruction.action);
}

void Interpreter::pushWhetherLess(double number) {
    stack_.pushNumber(number);
    if (!calculateInPlace(Operation::less2)) calculate(Action::less2);
}

bool Interpreter::popTruth() {
    if (stack_.size() == 0) return false;
    const ValueType type = stack_.top().type();
    const bool truth = type == ValueType::yes || (type != ValueType::no && toBoolean(stack_.top()));
    stack_.drop();
    return truth;
}

bool Interpreter::popWhetherLess() {
    if (!stack_.hasTwoNumbers()) {
        calculate(Action::less2);
        return popTruth();
    }
    const bool less = stack_.top(1).asNumber() < stack_.top().asNumber();
    stack_.drop();
    stack_.drop();
    return less;
}

bool Interpreter::popWhetherLess(double number) {
    if (stack_.size() == 0 || !stack_.top().is(ValueType::number)) {
        stack_.pushNumber(number);
        return popWhetherLess();
    }
    if (stack_.makeRoom()) memory_.touch(Value::numberCharge);
    const bool less = stack_.top().asNumber() < number;
    stack_.drop();
    return less;
}

// --- every instruction

Halt Interpreter::outOfWork() {
    if (!failed(scripts_.failure)) failRun(scripts_, Result::outOfMemory);
    return Halt::ended;
}

Halt Interpreter::run() {
    Instruction* next = instructionFor(list_.at);
    while (!memory_.exhausted) {
        Instruction& instruction = *next++;
        if (memory_.actionsLeft < instruction.count) return outOfWork();
        memory_.actionsLeft -= instruction.count;
        switch (instruction.operation) {
            case Operation::action:
                if (const Halt halt = performOther(instruction, next); halt != Halt::no) return halt;
                break;
            case Operation::end: return Halt::ended;
            case Operation::nothing: break;
            case Operation::pushText: pushText(instruction); break;
            case Operation::pushNumber: stack_.pushNumber(instruction.number); break;
            case Operation::pushConstant: stack_.pushConstant(ValueType(instruction.operand)); break;
            case Operation::pushRegister: pushRegister(instruction.operand); break;
            case Operation::pushPoolText: pushPoolText(instruction.operand); break;

            case Operation::getVariable: push(getVariable(movie_, popName(), instruction.memo.hint)); break;
            case Operation::setVariable: setVariableAction(instruction.memo.hint); break;
            case Operation::getMember: getMemberAction(popName()); break;
            case Operation::setMember: setMemberAction(); break;
            case Operation::callFunction:
                if (callFunction(movie_, popName()) == Called::opened) return goOnBehind(instruction);
                break;
            case Operation::callMethod:
                if (callMethod(movie_, popName()) == Called::opened) return goOnBehind(instruction);
                break;
            case Operation::returnValue: scripts_.returned = true; return Halt::ended;
            case Operation::jump: next = placeOf(instruction); break;
            case Operation::branch:
                if (popTruth()) next = placeOf(instruction);
                break;
            case Operation::pop: stack_.pop(); break;
            case Operation::add:
            case Operation::subtract:
            case Operation::multiply:
            case Operation::less2:
            case Operation::equals2:
                if (!calculateInPlace(instruction.operation)) calculate(instruction.action);
                break;
            case Operation::add2:
                if (!calculateInPlace(instruction.operation)) addValues();
                break;
            case Operation::increment: step(instruction, 1); break;
            case Operation::decrement: step(instruction, -1); break;
            case Operation::logicalNot: calculate(instruction.action); break;

            case Operation::getNamed: getNamed(instruction); break;
            case Operation::stepNamed: stepNamed(instruction); break;
            case Operation::getSpecial:
                touchName(nameIn(instruction));
                push(getVariable(movie_, nameIn(instruction)));
                break;
            case Operation::getNamedMember:
                touchName(nameIn(instruction));
                getMemberAction(nameIn(instruction));
                break;
            case Operation::callNamed:
                touchName(nameIn(instruction));
                if (callFunction(movie_, nameIn(instruction)) == Called::opened) return goOnBehind(instruction);
                break;
            case Operation::callNamedMethod:
                touchName(nameIn(instruction));
                if (callMethod(movie_, nameIn(instruction)) == Called::opened) return goOnBehind(instruction);
                break;
            case Operation::addNumber: addNumber(instruction.number); break;
            case Operation::lessNumber: pushWhetherLess(instruction.number); break;
            case Operation::branchIfLess:
                if (popWhetherLess()) next = placeOf(instruction);
                break;
            case Operation::branchIfLessNumber:
                if (popWhetherLess(instruction.number)) next = placeOf(instruction);
                break;
            case Operation::branchUnless:
                if (!popTruth()) next = placeOf(instruction);
                break;
        }
    }
    return Halt::ended;
}

Halt Interpreter::performOther(const Instruction& instruction, Instruction*& next) {
    const Memo memo = instruction.memo;
    const std::span<const std::uint8_t> operands = code_.subspan(instruction.operand, memo.next - instruction.operand);
    switch (instruction.action) {
        case Action::newObject: return newObjectOf(movie_) == Called::opened ? goOnBehind(instruction) : Halt::no;
        case Action::call: return callFrame(movie_) == Called::opened ? goOnBehind(instruction) : Halt::no;
        case Action::with: {
            ContentReader reader(operands);
            const std::uint32_t size = reader.u16();
            stack_.pop();
            next = instructionFor(std::min<std::uint32_t>(memo.next + size, static_cast<std::uint32_t>(code_.size())));
            return Halt::no;
        }
        case Action::defineFunction:
            next = instructionFor(defineFunction(movie_, list_, ContentReader(operands), memo.next));
            return Halt::no;
        default: break;
    }
    if (!performPlainAction(instruction.action, ContentReader(operands)) && !performObjectAction(instruction.action) &&
        !performNumberAction(movie_, instruction.action) && !performTextAction(movie_, instruction.action))
        performTimelineAction(movie_, instruction.action, ContentReader(operands), code_.subspan(memo.next));
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
            defineLocal(movie_, popName(), std::move(value));
            return true;
        }
        case Action::defineLocal2: defineLocal(movie_, popName(), {}); return true;
        case Action::deleteVariable: deleteVariable(movie_, popName()); return true;
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
                CallArguments elements(movie_, popCount(stack_));
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
