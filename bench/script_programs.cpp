#include "script_programs.h"

#include <string>

namespace qel::bench {
namespace {

// 100,000 additions.
constexpr ScriptProgram loop{.name = "loop",
                             .aim = 1500,
                             .variable = "i",
                             .result = "100000",
                             .listing = R"(
    Push 'i' 0
    SetVariable
again:
    Push 'i' 'i'
    GetVariable
    Push 1
    Add2
    SetVariable
    Push 'i'
    GetVariable
    Push 100000
    Less2
    If again
)",
                             .lua = R"(
i = 0
while i < 100000 do i = i + 1 end
)",
                             .javaScript = R"(
var i = 0;
while (i < 100000) i = i + 1;
)"};

// A text that grows to 8,000 bytes, by eight at a time.
const std::string grownText = [] {
    std::string text;
    for (int piece = 0; piece < 1000; ++piece) text += "abcdefgh";
    return text;
}();
const ScriptProgram text{.name = "text",
                         .aim = 400,
                         .variable = "t",
                         .result = grownText.c_str(),
                         .listing = R"(
    Push 't' ''
    SetVariable
    Push 'i' 0
    SetVariable
again:
    Push 't' 't'
    GetVariable
    Push 'abcdefgh'
    Add2
    SetVariable
    Push 'i' 'i'
    GetVariable
    Push 1
    Add2
    SetVariable
    Push 'i'
    GetVariable
    Push 1000
    Less2
    If again
)",
                         .lua = R"(
t = ''
i = 0
while i < 1000 do
    t = t .. 'abcdefgh'
    i = i + 1
end
)",
                         .javaScript = R"(
var t = '';
var i = 0;
while (i < 1000) {
    t = t + 'abcdefgh';
    i = i + 1;
}
)"};

// 10,000 numbers onto an array and off again; the last one off is the first one on.
constexpr ScriptProgram array{.name = "array",
                              .aim = 1000,
                              .variable = "last",
                              .result = "1",
                              .listing = R"(
    Push 'a' 0 'Array'
    NewObject
    SetVariable
    Push 'i' 0
    SetVariable
on:
    Push 'i' 'i'
    GetVariable
    Push 1
    Add2
    SetVariable
    Push 'i'
    GetVariable
    Push 1 'a'
    GetVariable
    Push 'push'
    CallMethod
    Pop
    Push 'i'
    GetVariable
    Push 10000
    Less2
    If on
off:
    Push 'last' 0 'a'
    GetVariable
    Push 'pop'
    CallMethod
    SetVariable
    Push 'i' 'i'
    GetVariable
    Push 1
    Subtract
    SetVariable
    Push 0 'i'
    GetVariable
    Less2
    If off
)",
                              .lua = R"(
a = {}
i = 0
while i < 10000 do
    i = i + 1
    table.insert(a, i)
end
while 0 < i do
    last = table.remove(a)
    i = i - 1
end
)",
                              .javaScript = R"(
var a = new Array();
var i = 0;
var last;
while (i < 10000) {
    i = i + 1;
    a.push(i);
}
while (0 < i) {
    last = a.pop();
    i = i - 1;
}
)"};

// A member read and written 10,000 times each.
constexpr ScriptProgram member{.name = "member",
                               .aim = 700,
                               .variable = "x",
                               .result = "10000",
                               .listing = R"(
    Push 'o' 0 'Object'
    NewObject
    SetVariable
    Push 'o'
    GetVariable
    Push 'x' 0
    SetMember
    Push 'i' 0
    SetVariable
again:
    Push 'o'
    GetVariable
    Push 'x' 'o'
    GetVariable
    Push 'x'
    GetMember
    Push 1
    Add2
    SetMember
    Push 'i' 'i'
    GetVariable
    Push 1
    Add2
    SetVariable
    Push 'i'
    GetVariable
    Push 10000
    Less2
    If again
    Push 'x' 'o'
    GetVariable
    Push 'x'
    GetMember
    SetVariable
)",
                               .lua = R"(
o = {}
o.x = 0
i = 0
while i < 10000 do
    o.x = o.x + 1
    i = i + 1
end
x = o.x
)",
                               .javaScript = R"(
var o = new Object();
o.x = 0;
var i = 0;
while (i < 10000) {
    o.x = o.x + 1;
    i = i + 1;
}
var x = o.x;
)"};

// 20,000 calls, which do the counting too.
constexpr ScriptProgram calls{.name = "calls",
                              .aim = 700,
                              .variable = "i",
                              .result = "20000",
                              .listing = R"(
DefineFunction 'sum' 'a' 'b' {
    Push 'a'
    GetVariable
    Push 'b'
    GetVariable
    Add2
    Return
}
    Push 'i' 0
    SetVariable
again:
    Push 'i' 1 'i'
    GetVariable
    Push 2 'sum'
    CallFunction
    SetVariable
    Push 'i'
    GetVariable
    Push 20000
    Less2
    If again
)",
                              .lua = R"(
function sum(a, b) return a + b end
i = 0
while i < 20000 do i = sum(i, 1) end
)",
                              .javaScript = R"(
function sum(a, b) { return a + b; }
var i = 0;
while (i < 20000) i = sum(i, 1);
)"};

}  // namespace

std::span<const ScriptProgram> scriptPrograms() {
    static const ScriptProgram all[] = {loop, text, array, member, calls};
    return all;
}

}  // namespace qel::bench
