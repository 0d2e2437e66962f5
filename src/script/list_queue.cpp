#include "script/list_queue.h"

#include "movie/movie.h"

namespace qel {
namespace {

void append(Movie& movie, ActionLevel& level, PoolPtr<ActionList> list) {
    if (failed(level.lists.append(*movie.scripts.memory.uncharged, std::move(list))))
        movie.scripts.memory.exhausted = true;
}

ActionLevel& nextLevel(ScriptContext& scripts) { return scripts.levels[scripts.level++]; }

}  // namespace

ActionList::~ActionList() {
    if (ClipInstance* clip = target.clip()) --clip->awaitingLists;
}

Shared<ActionCode> copyCode(Movie& movie, std::span<const std::uint8_t> bytes) {
    Pool& pool = movie.pool;
    PoolPtr<ActionCode> code = makePooled<ActionCode>(pool);
    if (!code || failed(code->bytes.assign(pool, bytes))) {
        movie.scripts.memory.exhausted = true;
        return {};
    }
    code->pool = &pool;
    return Shared<ActionCode>(code.release());
}

PoolPtr<ActionList> makeList(Movie& movie, Shared<ActionCode> code, const Target& target) {
    PoolPtr<ActionList> list;
    if (!code) return list;
    list = makePooled<ActionList>(movie.pool);
    if (!list) {
        movie.scripts.memory.exhausted = true;
        return list;
    }
    list->code = std::move(code);
    list->target = target;
    if (ClipInstance* clip = target.clip()) ++clip->awaitingLists;
    return list;
}

void appendList(Movie& movie, PoolPtr<ActionList> list) {
    ScriptContext& scripts = movie.scripts;
    append(movie, scripts.levels[scripts.level == 0 ? 0 : scripts.level - 1], std::move(list));
}

void openLevel(Movie& movie, PoolPtr<ActionList> list) { append(movie, nextLevel(movie.scripts), std::move(list)); }

void openLevel(Movie& movie, PoolArray<PoolPtr<ActionList>> lists) {
    ActionLevel& level = nextLevel(movie.scripts);
    for (PoolPtr<ActionList>& list : lists) append(movie, level, std::move(list));
}

}  // namespace qel
