#include "script/program.h"

#include <bit>

#include "movie/content_reader.h"
#include "script/value.h"

namespace qel {
namespace {

Operation operationOf(Action action) {
    switch (action) {
        case Action::getVariable: return Operation::getVariable;
        case Action::setVariable: return Operation::setVariable;
        case Action::getMember: return Operation::getMember;
        case Action::setMember: return Operation::setMember;
        case Action::callFunction: return Operation::callFunction;
        case Action::callMethod: return Operation::callMethod;
        case Action::returnValue: return Operation::returnValue;
        case Action::pop: return Operation::pop;
        case Action::add: return Operation::add;
        case Action::add2: return Operation::add2;
        case Action::subtract: return Operation::subtract;
        case Action::multiply: return Operation::multiply;
        case Action::increment: return Operation::increment;
        case Action::decrement: return Operation::decrement;
        case Action::less2: return Operation::less2;
        case Action::equals2: return Operation::equals2;
        case Action::logicalNot: return Operation::logicalNot;
        default: return Operation::action;
    }
}

// What becomes of a pushed text and the action that takes it as its name.
Operation namedOperation(Operation operation, const Text& name) {
    switch (operation) {
        case Operation::getVariable:
            return name.known == KnownName::none && !name.hasColon ? Operation::getNamed : Operation::getSpecial;
        case Operation::getMember: return Operation::getNamedMember;
        case Operation::callFunction: return Operation::callNamed;
        case Operation::callMethod: return Operation::callNamedMethod;
        default: return Operation::action;
    }
}

// What becomes of a pushed number and the action that takes it.
Operation numberOperation(Operation operation) {
    switch (operation) {
        case Operation::add2: return Operation::addNumber;
        case Operation::less2: return Operation::lessNumber;
        default: return Operation::action;
    }
}

// Behind these the code may go on elsewhere, or ends.
bool endsStretch(Action action) {
    return action == Action::defineFunction || action == Action::with || action == Action::returnValue;
}

class Translator {
  public:
    Translator(ScriptMemory& memory, Program& program, std::span<const std::uint8_t> code)
        : memory_(memory), program_(program), code_(code) {}

    // Goes on until the code ends, jumps, comes to what is ready, or is long enough.
    void translate(std::uint32_t at) {
        constexpr std::uint32_t longStretch = 512;
        first_ = program_.instructions.size();
        at_ = at;
        while (!memory_.exhausted) {
            const bool known = program_.starts[at_] != 0;
            if (known || program_.instructions.size() - first_ > longStretch) return jumpTo(at_);
            begin_ = at_;
            program_.starts[at_] = program_.instructions.size() + 1;
            if (!action()) return;
        }
    }

  private:
    static constexpr std::uint32_t none = 0xFFFFFFFF;
    static constexpr std::uint16_t mostCounted = 0xFFFF;
    static constexpr std::uint8_t lastTag = 11;

    void add(Instruction instruction) {
        instruction.count = std::exchange(count_, std::uint16_t{0});
        if (failed(program_.instructions.append(*memory_.uncharged, instruction))) memory_.exhausted = true;
    }
    void add(Operation operation, std::uint32_t operand, Action action = Action::end) {
        add(Instruction{operation, action, 0, operand, {0, at_}, {.name = nullptr}});
    }
    void addNumber(double number) {
        last_ = program_.instructions.size();
        add(Instruction{Operation::pushNumber, Action::end, 0, 0, {0, at_}, {.number = number}});
    }
    Instruction& lastAdded() { return program_.instructions.back(); }
    void jumpTo(std::uint32_t at) { add(Operation::jump, at); }
    bool end() {
        add(Operation::end, 0);
        return false;
    }

    // Null when memory is exhausted.
    Text* nameFor(std::string_view bytes) {
        Name name = makeName(memory_, bytes);
        if (!name) return nullptr;
        Text* const text = &*name;
        if (!failed(program_.names.append(*memory_.uncharged, std::move(name)))) return text;
        memory_.exhausted = true;
        return nullptr;
    }

    // False behind the last action of a stretch.
    bool action() {
        ContentReader reader(code_.subspan(at_));
        if (reader.left() == 0) return end();
        const auto action = static_cast<Action>(reader.u8());
        if (action == Action::end) return end();
        const std::uint32_t length = action >= Action{firstActionWithLength} ? reader.u16() : 0u;
        const auto operands = at_ + static_cast<std::uint32_t>(reader.cursor());
        const std::span<const std::uint8_t> bytes = reader.take(length);
        if (!reader.ok()) return end();  // the code is cut short
        at_ = operands + length;
        count_ = 1;
        switch (action) {
            case Action::push: return values(ContentReader(bytes));
            case Action::jump:
            case Action::branchIf: return jump(action, ContentReader(bytes));
            default: break;
        }
        if (action == Action::setVariable && joinWithStep()) return true;
        add(operationOf(action), operands, action);
        return !endsStretch(action);
    }

    // A place outside the code ends the list. Without an offset, nothing happens but that the condition goes.
    bool jump(Action action, ContentReader operands) {
        const auto offset = static_cast<std::int16_t>(operands.u16());
        if (!operands.ok()) {
            if (action == Action::branchIf) add(Operation::pop, 0);
            return true;
        }
        const std::int64_t to = std::int64_t{at_} + offset;
        const auto size = static_cast<std::int64_t>(code_.size());
        const auto place = static_cast<std::uint32_t>(to < 0 || to > size ? size : to);
        if (action == Action::branchIf && joinWithComparison(place)) return true;
        add(action == Action::jump ? Operation::jump : Operation::branch, place);
        return action == Action::branchIf;
    }

    // What is compared in front of an If mostly decides there and nowhere else: both become one instruction.
    bool joinWithComparison(std::uint32_t place) {
        if (program_.instructions.size() == first_) return false;
        Instruction& comparison = lastAdded();
        switch (comparison.operation) {
            case Operation::less2: comparison.operation = Operation::branchIfLess; break;
            case Operation::lessNumber: comparison.operation = Operation::branchIfLessNumber; break;
            case Operation::logicalNot: comparison.operation = Operation::branchUnless; break;
            default: return false;
        }
        program_.starts[begin_] = 0;  // a jump to the If itself finds it by itself
        comparison.count = static_cast<std::uint16_t>(comparison.count + count_);
        comparison.operand = place;
        comparison.memo = {0, at_};
        count_ = 0;
        return true;
    }

    // A variable that counts: both its names, the step and the action that sets it become one instruction.
    bool joinWithStep() {
        constexpr std::uint32_t parts = 3;
        const std::uint32_t count = program_.instructions.size();
        if (count - first_ < parts) return false;
        Instruction* const part = &program_.instructions[count - parts];
        const bool steps = part[2].operation == Operation::increment || part[2].operation == Operation::decrement;
        const bool named = part[0].operation == Operation::pushText && part[1].operation == Operation::getNamed &&
                           part[0].name == part[1].name;
        if (!steps || !named) return false;
        // A jump into the middle finds the actions there by itself.
        program_.starts[part[1].memo.next] = program_.starts[begin_] = 0;
        part[0].operation = Operation::stepNamed;
        part[0].action = part[2].action;
        part[0].count = static_cast<std::uint16_t>(part[0].count + part[1].count + part[2].count + count_);
        part[0].memo = {0, at_};
        program_.instructions.truncate(count - 2);
        count_ = 0;
        return true;
    }

    bool values(ContentReader operands) {
        while (operands.available(1) && !memory_.exhausted) {
            if (count_ == mostCounted) add(Operation::nothing, 0);
            ++count_;
            last_ = none;
            value(operands);
            if (!operands.ok()) return end();  // cut short
        }
        if (count_ != 0) add(Operation::nothing, 0);
        if (last_ != none) joinWithAction();
        return true;
    }

    void value(ContentReader& operands) {
        switch (static_cast<PushType>(operands.u8())) {
            case PushType::text: return text(operands);
            case PushType::single: {
                const auto number = std::bit_cast<float>(operands.u32());
                if (operands.ok()) addNumber(number);
                return;
            }
            case PushType::null: return constant(ValueType::null);
            case PushType::undefined: return constant(ValueType::undefined);
            case PushType::registerValue: {
                const std::uint32_t index = operands.u8();
                if (operands.ok()) add(Operation::pushRegister, index);
                return;
            }
            case PushType::boolean: {
                const std::uint32_t truth = operands.u8();
                if (operands.ok() && truth <= 1) constant(truth == 1 ? ValueType::yes : ValueType::no);
                return;
            }
            case PushType::real: return real(operands);
            case PushType::integer: {
                const auto number = static_cast<std::int32_t>(operands.u32());
                if (operands.ok()) addNumber(number);
                return;
            }
            case PushType::constant: {
                const std::uint32_t index = operands.u8();
                if (operands.ok()) add(Operation::pushPoolText, index);
                return;
            }
        }
        // Of other types there is only the type byte.
    }

    void constant(ValueType type) { add(Operation::pushConstant, static_cast<std::uint32_t>(type)); }

    void text(ContentReader& operands) {
        const std::span<const std::uint8_t> rest = operands.rest();
        std::size_t length = 0;
        while (length < rest.size() && rest[length] != 0) ++length;
        operands.skip(std::min(length + 1, rest.size()));
        Text* const name = nameFor({reinterpret_cast<const char*>(rest.data()), length});
        // What reads as a tag is no text.
        if (length == 0 || rest[0] > lastTag) last_ = program_.instructions.size();
        add(Operation::pushText, program_.names.size() - 1);
        if (!memory_.exhausted) lastAdded().name = name;
    }

    void real(ContentReader& operands) {
        const std::uint32_t high = operands.u32(), low = operands.u32();
        if (!operands.ok()) return;
        constexpr std::uint32_t quietNan = 0x7FF8, infinity = 0x7FF0, negativeInfinity = 0xFFF0;
        switch (high >> 16) {
            case quietNan: return constant(ValueType::notANumber);
            case infinity: return constant(ValueType::infinity);
            case negativeInfinity: return constant(ValueType::negativeInfinity);
            default: return addNumber(std::bit_cast<double>(std::uint64_t{high} << 32 | low));
        }
    }

    // The action behind a pushed value often takes it at once: both become one instruction.
    void joinWithAction() {
        if (memory_.exhausted || at_ == code_.size()) return;
        const auto action = static_cast<Action>(code_[at_]);
        Instruction& joined = program_.instructions[last_];
        const bool isText = joined.operation == Operation::pushText;
        const Operation operation =
            isText ? namedOperation(operationOf(action), *joined.name) : numberOperation(operationOf(action));
        if (operation == Operation::action) return;
        ++at_;
        joined.operation = operation;
        joined.action = action;
        ++joined.count;
        joined.memo.next = at_;
    }

    ScriptMemory& memory_;
    Program& program_;
    std::span<const std::uint8_t> code_;
    std::uint32_t first_ = 0;    // instruction of the stretch
    std::uint32_t begin_ = 0;    // of the action
    std::uint32_t at_ = 0;       // behind what was read
    std::uint16_t count_ = 0;    // actions and values that no instruction stands for yet
    std::uint32_t last_ = none;  // the instruction that pushes the last value of a Push
};

}  // namespace

std::uint32_t makeReady(ScriptMemory& memory, Program& program, std::span<const std::uint8_t> code, std::uint32_t at) {
    const auto size = static_cast<std::uint32_t>(code.size());
    if (program.starts.empty() && failed(program.starts.assignZeros(*memory.uncharged, size + 1))) {
        memory.exhausted = true;
        return 0;
    }
    // Actions that overlap could be made ready without end: then everything is forgotten, which counts as work.
    constexpr std::uint32_t mostPerByte = 2, least = 1024;
    if (program.instructions.size() / mostPerByte > size + least) {
        memory.spend(program.instructions.size());
        ++program.generation;
        program.instructions.truncate(0);
        program.names.truncate(0);
        for (std::uint32_t& start : program.starts) start = 0;
    }
    Translator(memory, program, code).translate(at);
    return memory.exhausted ? 0 : program.starts[at] - 1;
}

}  // namespace qel
