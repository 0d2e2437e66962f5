#include "script/text.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "script/name.h"

namespace qel {
namespace {

// A text that the budget could never hold is not put together either.
TextHold emptyBlock(ScriptMemory& memory, std::size_t length) {
    const std::size_t most = std::min<std::size_t>(memory.charged->budget, std::numeric_limits<std::int32_t>::max());
    if (length >= most) {
        memory.exhausted = true;
        return {};
    }
    const std::size_t size = std::max(sizeof(Text), offsetof(Text, bytes) + length + 1);
    void* block = allocateBlock(*memory.uncharged, size, 0);
    if (!block) {
        memory.exhausted = true;
        return {};
    }
    auto* text = new (block) Text{};
    text->memory = &memory;
    text->length = static_cast<std::uint32_t>(length);
    text->bytes[length] = 0;
    return TextHold(text);
}

}  // namespace

TextHold makeText(ScriptMemory& memory, std::string_view bytes) {
    return joinTexts(memory, bytes.substr(0, bytes.find('\0')), {});
}

TextHold joinTexts(ScriptMemory& memory, std::string_view first, std::string_view second) {
    TextHold text = emptyBlock(memory, first.size() + second.size());
    if (!text) return text;
    std::copy(first.begin(), first.end(), text.get()->bytes);
    std::copy(second.begin(), second.end(), text.get()->bytes + first.size());
    return text;
}

void freeText(Text& text) {
    if (text.isName) forgetName(text);
    freeBlock(*text.memory->uncharged, &text);
}

}  // namespace qel
