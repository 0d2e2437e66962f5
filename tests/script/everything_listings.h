// Listings that use every action, every function and every method that scripts have. Each stands for a frame's code;
// the movie around them has what they name: a clip "hero" with a clip "inner", a frame "page" that can be called.
#pragma once

#include <string>
#include <vector>

namespace qel::test {

// A function that calls itself, one that leaves early, a constructor whose prototype has a method.
inline const std::string definitions = R"(
    ConstantPool 'total' 'prototype' 'area'
    Push constant:0 0
    SetVariable
    Push 'log' ''
    SetVariable
DefineFunction 'sum' 'n' {          // n + (n - 1) + ... + 1
    Push 'n'
    GetVariable
    Push 1
    Less2
    If none
    Push 'n'
    GetVariable
    Push 'n'
    GetVariable
    Decrement
    Push 1 'sum'
    CallFunction
    Add
    Return
none:
    Push 0
    Return
}
DefineFunction 'note' 'text' {      // log = log + text + ';'
    Push 'joined'
    DefineLocal2
    Push 'joined' '/:log'
    GetVariable
    Push 'text'
    GetVariable
    StringAdd
    Push ';'
    Add2
    DefineLocal
    Push '/:log' 'joined'
    GetVariable
    SetVariable
}
DefineFunction 'Box' 'width' 'height' {
    Push 'this'
    GetVariable
    Push 'width' 'width'
    GetVariable
    SetMember
    Push 'this'
    GetVariable
    Push 'height' 'height'
    GetVariable
    SetMember
}
DefineFunction 'areaOfBox' {
    Push 'this'
    GetVariable
    Push 'width'
    GetMember
    Push 'this'
    GetVariable
    Push 'height'
    GetMember
    Multiply
    Return
}
    Push 'Box'
    GetVariable
    Push constant:1
    GetMember
    Push constant:2 'areaOfBox'
    GetVariable
    SetMember
)";

inline const std::string calculations = R"(
    Push 'n' 7 3
    Add
    Push 4
    Subtract
    Push 5
    Multiply
    Push 4
    Divide
    Push 4
    Modulo
    Increment
    Decrement
    ToInteger
    SetVariable             // ((7 + 3 - 4) * 5 / 4) % 4 = 3
    Push 'bits' 12 10
    BitAnd
    Push 3
    BitOr
    Push 6
    BitXor
    Push 4
    BitLShift
    Push 2
    BitRShift
    Push 1
    BitURShift
    SetVariable             // 26
    Push 'truth' 1 2
    Less
    Push 2.0 2
    Equals
    And
    Push 3 2
    Less2
    Or
    Push '2' 2.0f
    Equals2
    And
    Not
    SetVariable             // false
    Push 'chance' 1
    RandomNumber
    GetTime
    Push 0
    Multiply
    Add
    SetVariable             // 0
    Push 'word' 'star' 'fall'
    StringAdd
    Push 3 4
    StringExtract
    SetVariable             // arfa
    Push 'facts' 'word'
    GetVariable
    StringLength
    Push 'abc' 'abc'
    StringEquals
    StringAdd
    Push 'abc' 'abd'
    StringLess
    StringAdd
    Push 'A'
    CharToAscii
    StringAdd
    Push 66
    AsciiToChar
    StringAdd
    Push 'C'
    WideCharToAscii
    StringAdd
    Push 68
    WideAsciiToChar
    StringAdd
    Push '12'
    ToNumber
    ToString
    StringAdd
    Push undefined
    TypeOf
    StringAdd
    SetVariable             // 4truetrue65B67D12undefined
    Push 1 'kept'
    StackSwap
    StoreRegister 3
    Pop
    PushDuplicate
    Pop
    Pop
    Push 'kept' register:3
    SetVariable             // 1
    Push 'gone' NaN Infinity -Infinity
    Add
    Add
    SetVariable
    Push 'gone'
    Delete
    Push 'i' 0
    SetVariable
again:
    Push 'i' 'i'
    GetVariable
    Increment
    SetVariable
    Push 'i'
    GetVariable
    Push 20
    Less2
    If again
    Jump behind
    Trace
behind:
    Push 'box' 5 4 2 'Box'
    NewObject
    SetVariable
    Push 'facts' 'facts'
    GetVariable
    Push 9 1 'sum'
    CallFunction
    StringAdd
    Push 0 'box'
    GetVariable
    Push 'area'
    CallMethod
    StringAdd
    SetVariable             // ...4520
)";

// Acts on clips and timelines. The root stays where it is.
inline const std::string movements = R"(
    SetTarget 'hero'
    Push 'own' 5
    SetVariable
    NextFrame
    PrevFrame
    GotoFrame 1
    GoToLabel 'end'
    Play
    Push 'end'
    GotoFrame2 0
    Push 1
    GotoFrame2 1
    Stop
    SetTarget ''
    Push 'hero/inner'
    SetTarget2
    Stop
    SetTarget ''
    Push 'paths' 'hero'
    GetVariable
    TargetPath
    Push 'hero' 11
    GetProperty
    StringAdd
    Push 'hero:own'
    GetVariable
    StringAdd
    Push 'hero'
    GetVariable
    Push 'inner'
    GetMember
    StringAdd
    SetVariable
    Push 'hero' 0 12
    SetProperty
    Push 'page'
    Call
    Push 3
    Call
    SetTarget 'hero'
    Push 1
    Call
    SetTarget ''
    StopSounds
    Push 'hero'
    GetVariable
    With skipped
    Push 'total' 'this is passed over'
    SetVariable
skipped:
    Push 'copy' 'hero' 1
    DuplicateRequest
    Push 'copy'
    RemoveRequest
    Push 0 0 'hero'
    DragRequest
    GetURL 'http://example.invalid/' ''
    Push 'http://example.invalid/' ''
    GetURL2 0
    WaitForFrame 1 0
    Push 1
    WaitForFrame2 0
    End
)";

struct Call {
    const char* object;  // a listing's line that pushes it; null: a function
    const char* name;
    const char* arguments;  // the first one last; with their count behind them
};

inline const std::vector<Call> textCalls = {
    {"Push 'Hello'", "charAt", "1 1"},
    {"Push 'Hello'", "charCodeAt", "1 1"},
    {"Push 'ab'", "concat", "'d' 'c' 2"},
    {"Push 'abcabc'", "indexOf", "2 'bc' 2"},
    {"Push 'abcdef'", "slice", "-1 1 2"},
    {"Push 'abcdef'", "substr", "2 -3 2"},
    {"Push 'abcdef'", "substring", "4 2 2"},
    {"Push 'aBc'", "toLowerCase", "0"},
    {"Push 'aBc'", "toUpperCase", "0"},
    {"Push 'aBc'", "toString", "0"},
    {"Push 'aBc'", "valueOf", "0"},
    {"Push 1.25", "toString", "0"},
    {"Push 'String'\nGetVariable", "fromCharCode", "67 66 65 3"},
};

inline const std::vector<Call> functionCalls = {
    {nullptr, "Boolean", "'true' 1"},   {nullptr, "isFinite", "'12' 1"},       {nullptr, "isNaN", "NaN 1"},
    {nullptr, "parseFloat", "'1.5' 1"}, {nullptr, "parseInt", "'0x1A' 1"},     {nullptr, "parseInt", "16 '7f' 2"},
    {nullptr, "getBattery", "0"},       {nullptr, "registryLoad", "'name' 1"}, {nullptr, "nobody", "1 2 2"},
};

inline const std::vector<Call> clipCalls = {
    {"Push 'hero'\nGetVariable", "play", "0"},
    {"Push 'hero'\nGetVariable", "stop", "0"},
    {"Push 'hero'\nGetVariable", "nextFrame", "0"},
    {"Push 'hero'\nGetVariable", "prevFrame", "0"},
    {"Push 'hero'\nGetVariable", "gotoAndPlay", "'end' 1"},
    {"Push 'hero'\nGetVariable", "gotoAndStop", "1 1"},
    {"Push 'hero'\nGetVariable", "getBytesLoaded", "0"},
    {"Push 'this'\nGetVariable", "getBytesTotal", "0"},
    {"Push 'hero'\nGetVariable", "hitTest", "'hero/inner' 1"},
    {"Push 'hero'\nGetVariable", "hitTest", "5 4 2"},
    {"Push 'hero'\nGetVariable", "getBounds", "'hero/inner' 1"},
};

// note(what the call gives)
inline std::string noteOf(const Call& call) {
    std::string listing = std::string("Push ") + call.arguments + "\n";
    if (call.object) listing += std::string(call.object) + "\n";
    listing += std::string("Push '") + call.name + "'\n" + (call.object ? "CallMethod\n" : "CallFunction\n");
    return listing + "Push 1 'note'\nCallFunction\nPop\n";
}

inline std::string notesOf(const std::vector<Call>& calls) {
    std::string listing;
    for (const Call& call : calls) listing += noteOf(call);
    return listing;
}

inline std::string mathematics() {
    std::string listing;
    for (const char* name : {"abs", "acos", "asin", "atan", "ceil", "cos", "exp", "floor", "log", "round", "sin",
                             "sqrt", "tan", "random", "none"})
        listing += std::string("Push 1 1 'Math'\nGetVariable\nPush '") + name + "'\nCallMethod\nPop\n";
    for (const char* name : {"E", "LN10", "LN2", "LOG10E", "LOG2E", "PI", "SQRT1_2", "SQRT2"})
        listing += std::string("Push 'Math'\nGetVariable\nPush '") + name + "'\nGetMember\nPop\n";
    for (const char* name : {"MAX_VALUE", "MIN_VALUE", "NaN", "NEGATIVE_INFINITY", "POSITIVE_INFINITY"})
        listing += std::string("Push 'Number'\nGetVariable\nPush '") + name + "'\nGetMember\nPop\n";
    for (const char* name : {"atan2", "max", "min", "pow"})
        listing += noteOf({"Push 'Math'\nGetVariable", name, "2 8 2"});
    return listing;
}

// Arrays grow, are joined and written; objects of every class; points go from clip to clip.
inline const std::string objects = R"(
    Push 'list' 'c' 2 'a' 3
    InitArray
    SetVariable
    Push 'd' 1 'list'
    GetVariable
    Push 'push'
    CallMethod
    Pop
    Push 0 'list'
    GetVariable
    Push 'pop'
    CallMethod
    Pop
    Push 'list'
    GetVariable
    Push 4 'e'
    SetMember
    Push 'whole' 'list'
    GetVariable
    Push 7 2 'list'
    GetVariable
    Push 'concat'
    CallMethod
    ToString
    SetVariable             // a,2,c,undefined,e,7,a,2,c,e
    Push 'list'
    GetVariable
    Push 'self' 'list'
    GetVariable
    SetMember
    Push 'list'
    GetVariable
    Push 'length'
    GetMember
    Push 1 'note'
    CallFunction
    Pop
    Push 'made' 3 1 'Array'
    NewObject
    SetVariable
    Push 'made' 12 1 'String'
    NewObject
    SetVariable
    Push 'made' 0 'Color'
    NewObject
    SetVariable
    Push 'made' 0 'Sound'
    NewObject
    SetVariable
    Push 'made' 0 'Date'
    NewObject
    SetVariable
    Push 16 1 255 1 'Number'
    NewObject
    Push 'toString'
    CallMethod
    Push 1 'note'
    CallFunction
    Pop                     // ff
    Push 'point' 0 'Object'
    NewObject
    SetVariable
    Push 'point'
    GetVariable
    Push 'x' 4
    SetMember
    Push 'point'
    GetVariable
    Push 'point' 'point'
    GetVariable
    SetMember
    Push 'point'
    GetVariable
    Push 1 'hero'
    GetVariable
    Push 'localToGlobal'
    CallMethod
    Pop
    Push 'point'
    GetVariable
    Push 1 'hero'
    GetVariable
    Push 'globalToLocal'
    CallMethod
    Pop
    Push 'point'
    GetVariable
    Push 'x'
    GetMember
    Push 1 'note'
    CallFunction
    Pop                     // 4
    Push 'made'
    Delete
)";

inline constexpr const char* propertyNames[] = {"_x",           "_y",      "_xscale",       "_yscale", "_currentframe",
                                                "_totalframes", "_alpha",  "_visible",      "_width",  "_height",
                                                "_rotation",    "_target", "_framesloaded", "_name",   "_parent"};

// hero's properties and the root's are read, hero's are written.
inline std::string properties() {
    std::string listing;
    for (const char* name : propertyNames) {
        const std::string member = std::string("Push '") + name + "'\nGetMember\n";
        listing += "Push '_root'\nGetVariable\n" + member + "Pop\n";
        listing +=
            std::string("Push 'hero'\nGetVariable\nPush '") + name + "' 'hero'\nGetVariable\n" + member + "SetMember\n";
    }
    return listing + "Push 'hero'\nGetVariable\nPush '_width' 40\nSetMember\n";
}

// What hero runs when it comes, in every frame, and when it goes.
inline const std::string handler = R"(
    Push '_root'
    GetVariable
    Push 'handled' '_root'
    GetVariable
    Push 'handled'
    GetMember
    Increment
    SetMember
    Push '_parent'
    GetVariable
    Pop
    Push 'mine' 'this'
    GetVariable
    SetVariable
)";

inline const std::string pageOfRoot = "Push 'page' 1 'note'\nCallFunction\nPop\n";
inline const std::string pageOfHero = "Push 'hero' 1 'note'\nCallFunction\nPop\n";

// A key's: goes to the last frame, by name.
inline const std::string pressed = R"(
    Push 'pressed' 1 'note'
    CallFunction
    Pop
    GoToLabel 'last'
    Play
)";

}  // namespace qel::test
