// Programs in Lua and in Duktape, a JavaScript interpreter. Both collect garbage in the middle of a run where they see
// fit; what is left is collected between the runs.
#include <duktape.h>

#include <lua.hpp>
#include <stdexcept>

#include "script_runner.h"

namespace qel::bench {
namespace {

class LuaRunner final : public ScriptRunner {
  public:
    explicit LuaRunner(const ScriptProgram& program) : state_(luaL_newstate()), variable_(program.variable) {
        if (!state_) throw std::runtime_error("no memory for Lua");
        luaL_openlibs(state_.get());
        if (luaL_loadstring(state_.get(), program.lua) != LUA_OK) fail();
    }

    void prepare() override { lua_gc(state_.get(), LUA_GCCOLLECT); }

    void run() override {
        lua_pushvalue(state_.get(), 1);  // the program, which stays at the bottom of the stack
        if (lua_pcall(state_.get(), 0, 0, 0) != LUA_OK) fail();
    }

    std::string result() override {
        lua_getglobal(state_.get(), variable_);
        std::string text = luaL_tolstring(state_.get(), -1, nullptr);
        lua_settop(state_.get(), 1);
        return text;
    }

  private:
    struct Close {
        void operator()(lua_State* state) const { lua_close(state); }
    };

    [[noreturn]] void fail() { throw std::runtime_error(luaL_tolstring(state_.get(), -1, nullptr)); }

    std::unique_ptr<lua_State, Close> state_;
    const char* variable_;
};

class DuktapeRunner final : public ScriptRunner {
  public:
    explicit DuktapeRunner(const ScriptProgram& program)
        : heap_(duk_create_heap_default()), variable_(program.variable) {
        if (!heap_) throw std::runtime_error("no memory for Duktape");
        if (duk_pcompile_string(heap_.get(), 0, program.javaScript) != DUK_EXEC_SUCCESS) fail();
    }

    void prepare() override { duk_gc(heap_.get(), 0); }

    void run() override {
        duk_dup(heap_.get(), 0);  // the program, which stays at the bottom of the stack
        if (duk_pcall(heap_.get(), 0) != DUK_EXEC_SUCCESS) fail();
        duk_pop(heap_.get());
    }

    std::string result() override {
        duk_get_global_string(heap_.get(), variable_);
        std::string text = duk_safe_to_string(heap_.get(), -1);
        duk_set_top(heap_.get(), 1);
        return text;
    }

  private:
    struct Destroy {
        void operator()(duk_context* heap) const { duk_destroy_heap(heap); }
    };

    [[noreturn]] void fail() { throw std::runtime_error(duk_safe_to_string(heap_.get(), -1)); }

    std::unique_ptr<duk_context, Destroy> heap_;
    const char* variable_;
};

}  // namespace

std::unique_ptr<ScriptRunner> makeLuaRunner(const ScriptProgram& program) {
    return std::make_unique<LuaRunner>(program);
}

std::unique_ptr<ScriptRunner> makeDuktapeRunner(const ScriptProgram& program) {
    return std::make_unique<DuktapeRunner>(program);
}

}  // namespace qel::bench
