// What all decoded characters share, and the rule of who may keep one: whoever points at a character for longer than a
// call has a CharacterHold on it. A character that the dictionary gives up while somebody holds it lives on, out of
// reach of new lookups, until the last holder lets go. So nobody ever follows a pointer to a freed character.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "format/record_types.h"
#include "movie/pool.h"

namespace qel {

struct Character {
    CharacterKind kind = CharacterKind::none;
    std::uint8_t useCount = 0;  // as content counts uses; a wrapping byte
    bool inDictionary = false;
    std::uint32_t holders = 0;  // who points here, besides the dictionary
    Pool* pool = nullptr;       // where its memory comes from
};

// Frees a character with everything it owns. Nobody may hold it.
void destroyCharacter(Character* character);

// Owns a character that is not in the dictionary yet.
struct CharacterDelete {
    void operator()(Character* character) const { destroyCharacter(character); }
};
using CharacterPtr = std::unique_ptr<Character, CharacterDelete>;

template <class T>
PoolPtr<T> makeCharacter(Pool& pool, CharacterKind kind) {
    PoolPtr<T> made = makePooled<T>(pool);
    if (!made) return made;
    made->kind = kind;
    made->pool = &pool;
    return made;
}

inline void destroyIfAbandoned(Character& character) {
    if (character.holders == 0 && !character.inDictionary) destroyCharacter(&character);
}

// Keeps a character of type T (or none) alive.
template <class T>
class CharacterHold {
  public:
    CharacterHold() = default;
    explicit CharacterHold(T* character) : character_(character) {
        if (character_) ++character_->holders;
    }
    CharacterHold(CharacterHold&& other) noexcept : character_(std::exchange(other.character_, nullptr)) {}
    CharacterHold& operator=(CharacterHold&& other) noexcept {
        std::swap(character_, other.character_);
        return *this;
    }
    CharacterHold(const CharacterHold&) = delete;
    CharacterHold& operator=(const CharacterHold&) = delete;
    ~CharacterHold() {
        if (!character_) return;
        --character_->holders;
        destroyIfAbandoned(*character_);
    }

    T* get() const { return character_; }
    T* operator->() const { return character_; }
    T& operator*() const { return *character_; }
    explicit operator bool() const { return character_ != nullptr; }

  private:
    T* character_ = nullptr;
};

}  // namespace qel
