// Texts of scripts: bytes without a zero, shared by all values and names that hold them.
#pragma once

#include <string_view>

#include "script/known_names.h"
#include "script/script_memory.h"

namespace qel {

struct ScriptFunction;

// Counts its holders.
struct Text {
    ScriptMemory* memory;
    std::uint32_t holders;
    std::uint32_t length;

    // Of a text that is a name (script/name.h); of others nothing.
    ScriptFunction* function;  // the function of that name
    Text* nextName;            // in the table of names
    std::uint32_t hash;
    bool isName;
    bool hasColon;  // it begins with a path
    KnownName known;

    char bytes[1];  // `length` bytes and a zero

    std::string_view view() const { return {bytes, length}; }
};

void freeText(Text& text);

// Holds a text, or none.
class TextHold {
  public:
    TextHold() = default;
    explicit TextHold(Text* text) : text_(text) {
        if (text_) ++text_->holders;
    }
    TextHold(const TextHold& other) : TextHold(other.text_) {}
    TextHold(TextHold&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    TextHold& operator=(TextHold other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~TextHold() {
        if (text_ && --text_->holders == 0) freeText(*text_);
    }

    Text* get() const { return text_; }
    const Text* operator->() const { return text_; }
    explicit operator bool() const { return text_ != nullptr; }
    std::string_view view() const { return text_ ? text_->view() : std::string_view(); }

  private:
    Text* text_ = nullptr;
};

// A text of some bytes up to their first zero. None when memory is exhausted.
TextHold makeText(ScriptMemory& memory, std::string_view bytes);

// A text of two parts.
TextHold joinTexts(ScriptMemory& memory, std::string_view first, std::string_view second);

}  // namespace qel
