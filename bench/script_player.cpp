// Programs in the player: as action code that a playing movie has queued.
#include <stdexcept>

#include "author/assembler.h"
#include "author/frame_items.h"
#include "author/movie_writer.h"
#include "playing_movie.h"
#include "script/machine.h"
#include "script_runner.h"

namespace qel::bench {
namespace {

author::Bytes emptyMovie() {
    author::MovieFile movie;
    movie.width = movie.height = 16;
    movie.properties.frameDuration(50).dictionarySize(1);
    movie.records = {author::frame({}), author::frame({})};
    return visFile(movie);
}

void check(Result result, const char* what) {
    if (failed(result)) throw std::runtime_error(std::string(what) + " failed");
}

class PlayerRunner final : public ScriptRunner {
  public:
    explicit PlayerRunner(const ScriptProgram& program)
        : code_(author::assembleActions(program.listing)), variable_(program.variable), playing_(emptyMovie()) {
        playing_.playFrame();
    }

    void prepare() override {
        check(resetScripts(playing_.movie()), "forgetting what scripts have made");
        check(queueActionList(playing_.movie(), code_, nullptr), "queueing the program");
    }

    void run() override { check(runScripts(playing_.movie(), ScriptRun::frameActions), "the program"); }

    std::string result() override {
        ScriptContext& scripts = playing_.movie().scripts;
        const Variable* variable = scripts.variables.find(makeName(scripts.memory, variable_));
        if (variable && variable->value.is(ValueType::text)) return std::string(variable->value.asText().view());
        if (variable && variable->value.is(ValueType::number))
            return std::to_string(static_cast<long long>(variable->value.asNumber()));
        return {};
    }

  private:
    author::Bytes code_;
    const char* variable_;
    PlayingMovie playing_;
};

}  // namespace

std::unique_ptr<ScriptRunner> makePlayerRunner(const ScriptProgram& program) {
    return std::make_unique<PlayerRunner>(program);
}

}  // namespace qel::bench
