// The same small programs in the languages that are compared. Each ends with its result in the global variable "r".
#pragma once

namespace qel::bench {

struct ScriptProgram {
    const char* name;
    double result;
    double aim;  // microseconds: where a common small embedded engine stands, or below
    const char *ours, *lua, *javaScript;
};

inline constexpr ScriptProgram scriptPrograms[] = {
    {"loop", 100'000, 1500,
     R"(
        Push 'r' 0
        SetVariable
    again:
        Push 'r' 'r'
        GetVariable
        Increment
        SetVariable
        Push 'r'
        GetVariable
        Push 100000
        Less2
        If again)",
     R"(r = 0
        while r < 100000 do r = r + 1 end)",
     R"(r = 0;
        while (r < 100000) r = r + 1;)"},

    {"text", 8000, 400,
     R"(
        Push 's' '' 
        SetVariable
        Push 'i' 0
        SetVariable
    again:
        Push 's' 's'
        GetVariable
        Push 'eight by'
        Add2
        SetVariable
        Push 'i' 'i'
        GetVariable
        Increment
        SetVariable
        Push 'i'
        GetVariable
        Push 1000
        Less2
        If again
        Push 'r' 's'
        GetVariable
        StringLength
        SetVariable)",
     R"(s = "" i = 0
        while i < 1000 do s = s .. "eight by" i = i + 1 end
        r = #s)",
     R"(s = ""; i = 0;
        while (i < 1000) { s = s + "eight by"; i = i + 1; }
        r = s.length;)"},

    {"array", 49'995'000, 1000,
     R"(
        Push 'a' 0 'Array'
        NewObject
        SetVariable
        Push 'i' 0
        SetVariable
    push:
        Push 'i'
        GetVariable
        Push 1 'a'
        GetVariable
        Push 'push'
        CallMethod
        Pop
        Push 'i' 'i'
        GetVariable
        Increment
        SetVariable
        Push 'i'
        GetVariable
        Push 10000
        Less2
        If push
        Push 'r' 0
        SetVariable
    pop:
        Push 'r' 'r'
        GetVariable
        Push 0 'a'
        GetVariable
        Push 'pop'
        CallMethod
        Add
        SetVariable
        Push 'i' 'i'
        GetVariable
        Decrement
        SetVariable
        Push 0 'i'
        GetVariable
        Less2
        If pop)",
     R"(a = {} i = 0
        while i < 10000 do table.insert(a, i) i = i + 1 end
        r = 0
        while i > 0 do r = r + table.remove(a) i = i - 1 end)",
     R"(a = []; i = 0;
        while (i < 10000) { a.push(i); i = i + 1; }
        r = 0;
        while (i > 0) { r = r + a.pop(); i = i - 1; })"},

    {"member", 10'000, 700,
     R"(
        Push 'o' 0 'Thing'
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
        Increment
        SetMember
        Push 'i' 'i'
        GetVariable
        Increment
        SetVariable
        Push 'i'
        GetVariable
        Push 10000
        Less2
        If again
        Push 'r' 'o'
        GetVariable
        Push 'x'
        GetMember
        SetVariable)",
     R"(o = { x = 0 } i = 0
        while i < 10000 do o.x = o.x + 1 i = i + 1 end
        r = o.x)",
     R"(o = { x: 0 }; i = 0;
        while (i < 10000) { o.x = o.x + 1; i = i + 1; }
        r = o.x;)"},

    {"calls", 20'000, 700,
     R"(
        DefineFunction 'sum' 'a' 'b' {
            Push 'a'
            GetVariable
            Push 'b'
            GetVariable
            Add2
            Return
        }
        Push 'r' 0
        SetVariable
    again:
        Push 'r' 1 'r'
        GetVariable
        Push 2 'sum'
        CallFunction
        SetVariable
        Push 'r'
        GetVariable
        Push 20000
        Less2
        If again)",
     R"(function sum(a, b) return a + b end
        r = 0
        while r < 20000 do r = sum(r, 1) end)",
     R"(function sum(a, b) { return a + b; }
        r = 0;
        while (r < 20000) r = sum(r, 1);)"},
};

}  // namespace qel::bench
