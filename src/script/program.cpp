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

// What becomes of an action that finds its name pushed in front of it.
Operation namedOperation(Operation operation) {
    switch (operation) {
        case Operation::getVariable: return Operation::getNamed;
        case Operation::getMember: return Operation::getNamedMember;
        case Operation::callFunction: return Operation::callNamed;
        case Operation::callMethod: return Operation::callNamedMethod;
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
        const std::uint32_t first = program_.instructions.size();
        at_ = at;
        while (!memory_.exhausted) {
            const bool known = program_.starts[at_] != 0;
            if (known || program_.instructions.size() - first > longStretch) return jumpTo(at_);
            program_.starts[at_] = program_.instructions.size() + 1;
            lastText_ = none;
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
        add(Instruction{operation, action, 0, operand, {.memo = {0, at_}}});
    }
    void addNumber(double number) { add(Instruction{Operation::pushNumber, Action::end, 0, 0, {.number = number}}); }
    void jumpTo(std::uint32_t at) { add(Operation::jump, at); }
    bool end() {
        add(Operation::end, 0);
        return false;
    }

    std::uint32_t nameFor(std::string_view bytes) {
        const std::uint32_t index = program_.names.size();
        Name name = makeName(memory_, bytes);
        if (name && failed(program_.names.append(*memory_.uncharged, std::move(name)))) memory_.exhausted = true;
        return index;
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
        add(action == Action::jump ? Operation::jump : Operation::branch,
            static_cast<std::uint32_t>(to < 0 || to > size ? size : to));
        return action == Action::branchIf;
    }

    bool values(ContentReader operands) {
        while (operands.available(1) && !memory_.exhausted) {
            if (count_ == mostCounted) add(Operation::nothing, 0);
            ++count_;
            lastText_ = none;
            value(operands);
            if (!operands.ok()) return end();  // cut short
        }
        if (count_ != 0) add(Operation::nothing, 0);
        if (lastText_ != none) joinWithAction();
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
        // What reads as a tag is no text.
        if (length == 0 || rest[0] > lastTag) lastText_ = program_.instructions.size();
        add(Operation::pushText, nameFor({reinterpret_cast<const char*>(rest.data()), length}));
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

    // The action behind a pushed text often takes it as its name: both become one instruction.
    void joinWithAction() {
        if (memory_.exhausted || at_ == code_.size()) return;
        const auto action = static_cast<Action>(code_[at_]);
        const Operation named = namedOperation(operationOf(action));
        if (named == Operation::action) return;
        ++at_;
        Instruction& joined = program_.instructions[lastText_];
        joined.operation = named;
        joined.action = action;
        ++joined.count;
        joined.memo = {0, at_};
    }

    ScriptMemory& memory_;
    Program& program_;
    std::span<const std::uint8_t> code_;
    std::uint32_t at_ = 0;
    std::uint16_t count_ = 0;        // actions and values that no instruction stands for yet
    std::uint32_t lastText_ = none;  // the instruction that pushes the last value, if that is a text
};

}  // namespace

std::uint32_t instructionAt(ScriptMemory& memory, Program& program, std::span<const std::uint8_t> code,
                            std::uint32_t at) {
    const auto size = static_cast<std::uint32_t>(code.size());
    if (program.starts.empty() && failed(program.starts.assignZeros(*memory.uncharged, size + 1))) {
        memory.exhausted = true;
        return 0;
    }
    if (program.starts[at] == 0) {
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
    }
    return memory.exhausted ? 0 : program.starts[at] - 1;
}

}  // namespace qel
