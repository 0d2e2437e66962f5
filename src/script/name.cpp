#include "script/name.h"

#include "script/numbers.h"

namespace qel {
namespace {

std::uint32_t hashOf(std::string_view bytes) {
    std::uint32_t hash = 2166136261u;
    for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash;
}

Text*& chainOf(NameTable& table, std::uint32_t hash) { return table.buckets[hash & (table.buckets.size() - 1)]; }

// Content may choose names that all meet in one chain: looking along it counts as work.
Text* find(ScriptMemory& memory, std::string_view bytes, std::uint32_t hash) {
    NameTable& table = *memory.names;
    if (table.buckets.empty()) return nullptr;
    Text* found = chainOf(table, hash);
    std::size_t passed = 0;
    for (; found && (found->hash != hash || found->view() != bytes); found = found->nextName) ++passed;
    memory.spend(passed / 4 + bytes.size() / 64);
    return found;
}

// A table that cannot grow serves on, only slower.
void growTable(ScriptMemory& memory) {
    NameTable& table = *memory.names;
    constexpr std::uint32_t firstCount = 64;
    PoolArray<Text*> grown;
    if (failed(grown.assignZeros(*memory.uncharged, table.buckets.empty() ? firstCount : 2 * table.buckets.size())))
        return;
    std::swap(grown, table.buckets);
    for (Text* text : grown) {
        while (text) {
            Text* const next = text->nextName;
            Text*& chain = chainOf(table, text->hash);
            text->nextName = std::exchange(chain, text);
            text = next;
        }
    }
}

}  // namespace

Name asName(ScriptMemory& memory, TextHold text) {
    if (!text || text->isName) return Name(std::move(text));
    const std::uint32_t hash = hashOf(text.view());
    if (Text* found = find(memory, text.view(), hash)) return Name(TextHold(found));
    NameTable& table = *memory.names;
    if (table.count >= table.buckets.size()) growTable(memory);
    if (table.buckets.empty()) {
        memory.exhausted = true;
        return {};
    }
    Text& name = *text.get();
    name.isName = true;
    name.hash = hash;
    name.hasColon = name.view().find(':') != std::string_view::npos;
    name.known = knownName(name.view());
    name.nextName = std::exchange(chainOf(table, hash), &name);
    ++table.count;
    return Name(std::move(text));
}

Name makeName(ScriptMemory& memory, std::string_view bytes) {
    bytes = bytes.substr(0, bytes.find('\0'));
    Name known = findName(memory, bytes);
    return known ? known : asName(memory, makeText(memory, bytes));
}

Name indexName(ScriptMemory& memory, std::int32_t index) {
    constexpr std::int32_t mostKept = 16384;
    const bool isKept = index >= 0 && index < mostKept;
    PoolArray<Name>& kept = memory.names->indexes;
    const auto at = static_cast<std::uint32_t>(index);
    if (isKept && at < kept.size() && kept[at]) return kept[at];
    Name name = makeName(memory, formatInteger(index).view());
    if (isKept && at == kept.size() && name) (void)kept.append(*memory.uncharged, name);
    return name;
}

Name findName(ScriptMemory& memory, std::string_view bytes) {
    return Name(TextHold(find(memory, bytes, hashOf(bytes))));
}

void forgetName(Text& text) {
    NameTable& table = *text.memory->names;
    std::size_t passed = 0;
    Text** link = &chainOf(table, text.hash);
    for (; *link != &text; link = &(*link)->nextName) ++passed;
    text.memory->spend(passed / 4);
    *link = text.nextName;
    --table.count;
}

}  // namespace qel
