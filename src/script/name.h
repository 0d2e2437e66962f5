// Names of variables, members and functions: of each there is one text, so that names are compared by their addresses.
#pragma once

#include "script/text.h"

namespace qel {

// Holds a text that is a name, or none.
class Name {
  public:
    Name() = default;

    const TextHold& text() const { return text_; }
    Text& operator*() const { return *text_.get(); }
    Text* operator->() const { return text_.get(); }
    explicit operator bool() const { return static_cast<bool>(text_); }
    std::string_view view() const { return text_.view(); }
    friend bool operator==(const Name& a, const Name& b) { return a.text_.get() == b.text_.get(); }

  private:
    explicit Name(TextHold text) : text_(std::move(text)) {}
    friend Name asName(ScriptMemory& memory, TextHold text);
    friend Name findName(ScriptMemory& memory, std::string_view bytes);

    TextHold text_;
};

template <>
inline constexpr std::uint32_t charge<class Name> = 4;
template <>
inline constexpr std::uint32_t charge<struct Text*> = 4;

struct NameTable {
    PoolArray<Text*> buckets;  // chains of names with the same low bits of their hash
    std::uint32_t count = 0;
    PoolArray<Name> indexes;  // "0", "1" and so on, each as soon as it was asked for
};

// The name that a text is; none when memory is exhausted, or for no text.
Name asName(ScriptMemory& memory, TextHold text);
Name makeName(ScriptMemory& memory, std::string_view bytes);

// The name of an array's element.
Name indexName(ScriptMemory& memory, std::int32_t index);

// A name that somebody holds; none where nobody does.
Name findName(ScriptMemory& memory, std::string_view bytes);

// Takes the text of a name out of the table: nobody holds it any more.
void forgetName(Text& text);

}  // namespace qel
