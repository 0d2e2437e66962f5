#include "script/list_queue.h"

#include <algorithm>

#include "movie/movie.h"

namespace qel {
namespace {

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

// Whether the level has an empty list left, or gets one.
bool hasRoom(Movie& movie, ActionLevel& level) {
    PoolArray<PoolPtr<ActionList>>& lists = level.lists;
    if (level.count < lists.size()) return true;
    if (lists.capacity() == 0 && failed(lists.reserve(movie.pool, ActionLevel::firstCapacity))) return false;
    PoolPtr<ActionList> list = makePooled<ActionList>(movie.heap);
    return list && !failed(lists.append(movie.pool, std::move(list)));
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

ActionList* addList(Movie& movie, ActionLevel& level, Shared<ActionCode> code, CodeOwner owner, const Target& target) {
    ScriptMemory& memory = movie.scripts.memory;
    const bool charges = owner == CodeOwner::list;
    if (!code || !hasRoom(movie, level) || (charges && !memory.take(code->bytes.size()))) {
        memory.exhausted = true;
        return nullptr;
    }
    ActionList& list = *level.lists[level.count++];
    if (charges) list.codeChargedTo = &movie.pool;
    list.code = std::move(code);
    list.target = target;
    if (ClipInstance* clip = target.clip()) ++clip->awaitingLists;
    return &list;
}

void emptyLevel(ActionLevel& level) {
    for (std::uint32_t i = 0; i < level.count; ++i) level.lists[i]->clear();
    level.lists.truncate(ActionLevel::firstCapacity);
    level.count = level.current = 0;
}

}  // namespace qel
