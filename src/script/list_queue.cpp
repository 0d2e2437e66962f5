#include "script/list_queue.h"

#include <algorithm>

#include "movie/movie.h"

namespace qel {
namespace {

void append(Movie& movie, ActionLevel& level, PoolPtr<ActionList> list) {
    const bool failedToGrow = failed(level.lists.reserve(movie.pool, ActionLevel::firstCapacity)) ||
                              failed(level.lists.append(movie.pool, std::move(list)));
    if (failedToGrow) movie.scripts.memory.exhausted = true;
}

ActionLevel& nextLevel(ScriptContext& scripts) { return scripts.levels[scripts.level++]; }

Shared<ActionCode> makeCode(Movie& movie, std::span<const std::uint8_t> bytes) {
    Pool& pool = movie.heap;
    PoolPtr<ActionCode> code = makePooled<ActionCode>(pool);
    if (!code || failed(code->bytes.assign(pool, bytes))) {
        movie.scripts.memory.exhausted = true;
        return {};
    }
    code->pool = &pool;
    return Shared<ActionCode>(code.release());
}

std::uint32_t checksum(std::span<const std::uint8_t> bytes) {
    std::uint32_t sum = static_cast<std::uint32_t>(bytes.size());
    for (const std::uint8_t byte : bytes) sum = (sum ^ byte) * 16777619u;
    return sum ^ sum >> 15;
}

}  // namespace

void ActionList::clear() {
    if (ClipInstance* clip = target.clip()) --clip->awaitingLists;
    if (codeChargedTo && code) giveBackCharge(*codeChargedTo, code->bytes.size());
    codeChargedTo = nullptr;
    code = {};
    at = 0;
    function = nullptr;
    thisObject = Value();
    kind = ListKind::code;
    constants = {};
    target = {};
}

Shared<ActionCode> shareCode(Movie& movie, std::span<const std::uint8_t> bytes) {
    constexpr std::size_t mostShared = 4096;
    if (bytes.size() > mostShared) return makeCode(movie, bytes);
    std::array<Shared<ActionCode>, ScriptContext::recentCodes>& recent = movie.scripts.recentCode;
    Shared<ActionCode>& place = recent[checksum(bytes) % recent.size()];
    if (!place || !std::ranges::equal(place->bytes.span(), bytes)) place = makeCode(movie, bytes);
    return place;
}

PoolPtr<ActionList> makeList(Movie& movie, Shared<ActionCode> code, CodeOwner owner, const Target& target) {
    ScriptContext& scripts = movie.scripts;
    PoolPtr<ActionList> list;
    if (!code) return list;
    if (scripts.spareLists.empty()) {
        list = makePooled<ActionList>(movie.heap);
    } else {
        list = std::move(scripts.spareLists.back());
        scripts.spareLists.truncate(scripts.spareLists.size() - 1);
    }
    const bool charges = owner == CodeOwner::list;
    if (!list || (charges && !scripts.memory.take(code->bytes.size()))) {
        scripts.memory.exhausted = true;
        return {};
    }
    if (charges) list->codeChargedTo = &movie.pool;
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

void emptyLevel(ScriptContext& scripts, ActionLevel& level) {
    constexpr std::uint32_t mostSpare = 32;
    const bool keeps = !failed(scripts.spareLists.reserve(*scripts.memory.uncharged, mostSpare));
    for (PoolPtr<ActionList>& list : level.lists) {
        if (!keeps || scripts.spareLists.size() == mostSpare) break;
        list->clear();
        scripts.spareLists.appendReserved(std::move(list));
    }
    level.lists.truncate(0);
    level.current = 0;
}

}  // namespace qel
