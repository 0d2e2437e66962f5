#include <duktape.h>

#include <stdexcept>

#include "script_peers.h"

namespace qel::bench {
namespace {

class Duktape : public ScriptPeer {
  public:
    explicit Duktape(const char* program) : heap_(duk_create_heap_default(), &duk_destroy_heap) {
        if (!heap_) throw std::runtime_error("Duktape: out of memory");
        duk_push_string(heap_.get(), program);
        duk_push_string(heap_.get(), "program");
        check(duk_pcompile(heap_.get(), 0));
    }

    void run() override {
        duk_dup_top(heap_.get());
        check(duk_pcall(heap_.get(), 0));
        duk_pop(heap_.get());
    }

    double result() override {
        duk_get_global_string(heap_.get(), "r");
        const double number = duk_get_number(heap_.get(), -1);
        duk_pop(heap_.get());
        return number;
    }

  private:
    void check(duk_int_t status) {
        if (status != 0) throw std::runtime_error(duk_safe_to_string(heap_.get(), -1));
    }

    std::unique_ptr<duk_context, decltype(&duk_destroy_heap)> heap_;
};

}  // namespace

std::unique_ptr<ScriptPeer> duktapePeer(const char* program) { return std::make_unique<Duktape>(program); }

}  // namespace qel::bench
