#include "script/text.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace qel {
namespace {

TextHold emptyBlock(ScriptMemory& memory, std::size_t length) {
    if (length > std::numeric_limits<std::int32_t>::max()) {
        memory.exhausted = true;
        return {};
    }
    const std::size_t size = std::max(sizeof(Text), offsetof(Text, bytes) + length + 1);
    void* block = allocateBlock(*memory.uncharged, size, 0);
    if (!block) {
        memory.exhausted = true;
        return {};
    }
    auto* text = new (block) Text{&memory, 0, static_cast<std::uint32_t>(length), 0, {}};
    text->bytes[length] = 0;
    return TextHold(text);
}

}  // namespace

std::uint32_t hashOf(std::string_view bytes) {
    std::uint32_t hash = 2166136261u;
    for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash;
}

TextHold makeText(ScriptMemory& memory, std::string_view bytes) {
    return joinTexts(memory, bytes.substr(0, bytes.find('\0')), {});
}

TextHold joinTexts(ScriptMemory& memory, std::string_view first, std::string_view second) {
    TextHold text = emptyBlock(memory, first.size() + second.size());
    if (!text) return text;
    std::copy(first.begin(), first.end(), text.get()->bytes);
    std::copy(second.begin(), second.end(), text.get()->bytes + first.size());
    text.get()->hash = hashOf(text.view());
    return text;
}

}  // namespace qel
