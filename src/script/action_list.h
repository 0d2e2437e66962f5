// Pieces of action code that wait for their turn or run: what they share, and where they stand.
#pragma once

#include <span>

#include "script/program.h"
#include "script/script_object.h"

namespace qel {

// Counts its holders and is freed with the last. T has `holders` and `pool`.
template <class T>
class Shared {
  public:
    Shared() = default;
    explicit Shared(T* object) : object_(object) {
        if (object_) ++object_->holders;
    }
    Shared(const Shared& other) : Shared(other.object_) {}
    Shared(Shared&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Shared& operator=(Shared other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Shared() {
        if (object_ && --object_->holders == 0) PoolPtr<T>(object_, PoolDelete{object_->pool}).reset();
    }

    T* get() const { return object_; }
    T* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

  private:
    T* object_ = nullptr;
};

// Code is charged where the device has a copy of it: to each list that owns one, and to functions. Here all share it.
struct ActionCode {
    std::uint32_t holders = 0;
    Pool* pool = nullptr;
    PoolArray<std::uint8_t> bytes;
    Program program;
};
template <>
inline constexpr std::uint32_t charge<struct ActionCode> = 0;

// Texts that Push names by their index. A text that would read as a tag is replaced when the pool is made.
struct ConstantPool {
    std::uint32_t holders = 0;
    Pool* pool = nullptr;
    PoolArray<Value> texts;
};
template <>
inline constexpr std::uint32_t charge<struct ConstantPool> = 0;

struct ScriptFunction {
    Name name;
    PoolArray<Name> parameters;
    Shared<ActionCode> code;
    VariableList locals;  // of all its calls
    Shared<ConstantPool> constants;
    ScriptObject prototype;
    ScriptFunction* next = nullptr;
};
template <>
inline constexpr std::uint32_t charge<struct ScriptFunction> = 76;

// The clip that code acts on: the root, a clip, or one that is gone.
class Target {
  public:
    Target() = default;  // the root
    explicit Target(ClipAnchor* anchor) : anchor_(anchor) {
        if (anchor_) holdAnchor(*anchor_);
    }
    Target(const Target& other) : Target(other.anchor_) {}
    Target(Target&& other) noexcept : anchor_(std::exchange(other.anchor_, nullptr)) {}
    Target& operator=(Target other) noexcept {
        std::swap(anchor_, other.anchor_);
        return *this;
    }
    ~Target() {
        if (anchor_) letGoOfAnchor(*anchor_);
    }

    bool isRoot() const { return !anchor_; }
    bool isGone() const { return anchor_ && !anchor_->clip; }
    ClipInstance* clip() const { return anchor_ ? anchor_->clip : nullptr; }  // null: the root, or gone
    ClipAnchor* anchor() const { return anchor_; }

  private:
    ClipAnchor* anchor_ = nullptr;
};

enum class ListKind : std::uint8_t { code = 0, call = 2, method = 3, constructor = 4 };

struct ActionList {
    Shared<ActionCode> code;
    Pool* codeChargedTo = nullptr;  // null: the code is a function's
    std::uint32_t at = 0;           // of the next action
    ScriptFunction* function = nullptr;
    Value thisObject;  // undefined: none
    ListKind kind = ListKind::code;
    Shared<ConstantPool> constants;
    Target target;

    ActionList() = default;
    ActionList(const ActionList&) = delete;
    ~ActionList() { clear(); }
    // Lets go of everything; the target's clip waits for one list less.
    void clear();
};
template <>
inline constexpr std::uint32_t charge<struct ActionList> = 0;  // charged with the level that it lies on

// Code that runs before the code below it goes on.
struct ActionLevel {
    static constexpr std::uint32_t firstCapacity = 20;

    PoolArray<PoolPtr<ActionList>> lists;  // those behind `count` are empty, kept for the next time
    std::uint32_t count = 0;
    std::uint32_t current = 0;
};
template <>
inline constexpr std::uint32_t charge<PoolPtr<ActionList>> = 40;  // the list itself

}  // namespace qel
