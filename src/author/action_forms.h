// The actions by the names that listings of action code use, and what stands behind each name.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "format/action_codes.h"

namespace qel::author {

enum class OperandForm : std::uint8_t {
    none,
    byte,       // u8
    word,       // u16
    text,       // zero-terminated
    jump,       // s16: how far it is from the action's end to where the code goes on
    skip,       // u16: how many bytes behind the action are passed over
    entries,    // of Push
    constants,  // of ConstantPool
    function,   // of DefineFunction, whose body follows the action
};

struct ActionForm {
    Action action;
    std::string_view name;
    std::array<OperandForm, 2> operands = {};  // up to the first `none`
};

// Sorted by code.
std::span<const ActionForm> actionForms();

// Null for a code or a name that is no action's.
const ActionForm* actionOf(std::uint8_t code);
const ActionForm* actionNamed(std::string_view name);

// What listings call values of Push that stand for themselves.
struct PlainValueName {
    std::string_view name;
    PushType type;
};
inline constexpr PlainValueName plainValueNames[] = {{"null", PushType::null}, {"undefined", PushType::undefined}};

// Values that are written as a kind and a number, "register:2".
inline constexpr std::string_view registerPrefix = "register:";
inline constexpr std::string_view constantPrefix = "constant:";
inline constexpr std::string_view booleanPrefix = "boolean:";  // other bytes than those of true and false
inline constexpr std::string_view singlePrefix = "single:";    // the bits of a number that has no digits
inline constexpr std::string_view doublePrefix = "double:";
inline constexpr std::string_view typePrefix = "type:";  // a type byte that has no data

// The lines that stand for bytes which are no action with its operands.
inline constexpr std::string_view rawActionName = "Code";  // an action's code, then its operands' bytes
inline constexpr std::string_view rawBytesName = "Bytes";  // bytes as they are

// Functions in functions: deeper ones are written as bytes.
inline constexpr int mostFunctionNesting = 64;

}  // namespace qel::author
