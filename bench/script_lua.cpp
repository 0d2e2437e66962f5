#include <lua.hpp>
#include <stdexcept>

#include "script_peers.h"

namespace qel::bench {
namespace {

class Lua : public ScriptPeer {
  public:
    explicit Lua(const char* program) : state_(luaL_newstate(), &lua_close) {
        if (!state_) throw std::runtime_error("Lua: out of memory");
        luaL_openlibs(state_.get());
        check(luaL_loadstring(state_.get(), program));
    }

    void run() override {
        lua_pushvalue(state_.get(), -1);
        check(lua_pcall(state_.get(), 0, 0, 0));
    }

    double result() override {
        lua_getglobal(state_.get(), "r");
        const double number = lua_tonumber(state_.get(), -1);
        lua_pop(state_.get(), 1);
        return number;
    }

  private:
    void check(int status) {
        if (status != LUA_OK) throw std::runtime_error(lua_tostring(state_.get(), -1));
    }

    std::unique_ptr<lua_State, decltype(&lua_close)> state_;
};

}  // namespace

std::unique_ptr<ScriptPeer> luaPeer(const char* program) { return std::make_unique<Lua>(program); }

}  // namespace qel::bench
