// Action code made ready to run: every action and every value of a Push is an instruction, with its operands decoded.
// Code is made ready where it is run, a stretch at a time: a jump may lead anywhere, into the operands of an action
// too, and finds there what the bytes say.
#pragma once

#include <cstdint>
#include <span>

#include "format/action_codes.h"
#include "script/name.h"

namespace qel {

enum class Operation : std::uint8_t {
    action,  // any other action: `operand` is where its operands begin
    end,
    nothing,  // a value that pushes nothing

    // Values of Push.
    pushText,      // `name`
    pushNumber,    // `number`
    pushConstant,  // `operand`: its ValueType
    pushRegister,  // `operand`: its number
    pushPoolText,  // `operand`: its index

    // The actions of loops and calls.
    getVariable,
    setVariable,
    getMember,
    setMember,
    callFunction,
    callMethod,
    returnValue,
    jump,    // `operand`: where in the code it goes on
    branch,  // the same, where the condition is true
    pop,
    add,
    add2,
    subtract,
    multiply,
    increment,
    decrement,
    less2,
    equals2,
    logicalNot,

    // A text is pushed, `name`, and taken by the action behind it.
    getNamed,    // GetVariable; the name is a variable's and has no path
    getSpecial,  // GetVariable
    getNamedMember,
    callNamed,
    callNamedMethod,
    stepNamed,  // twice: GetVariable, Increment or Decrement, SetVariable
    // A number is pushed, `number`, and taken by the action behind it.
    addNumber,
    lessNumber,
    // A comparison, or a Not, decides whether it goes on at `operand`.
    branchIfLess,
    branchIfLessNumber,  // than `number`
    branchUnless,
};

// What an instruction knows of its surroundings.
struct Memo {
    std::uint32_t hint;  // where a variable was found last time; of a jump: 1 + the instruction it leads to, or 0
    std::uint32_t next;  // where in the code it goes on behind this one
};

struct Instruction {
    Operation operation;
    Action action;        // of those that come of one action
    std::uint16_t count;  // how many actions and values it stands for
    std::uint32_t operand;
    Memo memo;
    union {
        double number;
        Text* name;  // held by the program
    };
};

struct Program {
    PoolArray<Instruction> instructions;
    PoolArray<Name> names;
    std::uint32_t generation = 0;     // how often everything was forgotten
    PoolArray<std::uint32_t> starts;  // for each byte of the code and its end: the instruction's index plus 1, or 0
};

// The instruction at a place in the code, or at its end; behind it, what follows is ready too as far as its stretch
// goes. The program may be made anew: indexes of before count no longer. Nothing is ready when memory is exhausted.
std::uint32_t makeReady(ScriptMemory& memory, Program& program, std::span<const std::uint8_t> code, std::uint32_t at);
inline std::uint32_t instructionAt(ScriptMemory& memory, Program& program, std::span<const std::uint8_t> code,
                                   std::uint32_t at) {
    const bool ready = !program.starts.empty() && program.starts[at] != 0;
    return ready ? program.starts[at] - 1 : makeReady(memory, program, code, at);
}

template <>
inline constexpr std::uint32_t charge<struct Instruction> = 0;  // the device runs the bytes

}  // namespace qel
