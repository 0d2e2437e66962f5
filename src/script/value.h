// The values of scripts. One owner each; copies are made on purpose, because a number, a text or a clip reference costs
// memory on the device. Whatever a value refers to is held or known to be gone: nothing freed is ever followed.
#pragma once

#include <bit>
#include <cstdint>
#include <utility>

#include "script/text.h"

namespace qel {

struct ClipAnchor;
struct ScriptFunction;
struct ScriptObject;

// The device's tags. Every text counts as 12.
enum class ValueType : std::uint8_t {
    yes = 1,
    no = 2,
    null = 3,
    undefined = 4,
    notANumber = 5,
    infinity = 6,
    negativeInfinity = 7,
    object = 8,
    clip = 9,
    function = 10,
    number = 11,
    text = 12,
};

void holdObject(ScriptObject& object);
void letGoOfObject(ScriptObject& object);
void holdAnchor(ClipAnchor& anchor);
void letGoOfAnchor(ClipAnchor& anchor);

class Value {
  public:
    // What the device's heap blocks take.
    static constexpr std::uint32_t numberCharge = 16, clipCharge = 8;
    static std::uint32_t textCharge(const Text& text) { return text.length + 1; }

    Value() = default;
    explicit Value(bool value) : word_(static_cast<std::uintptr_t>(value ? ValueType::yes : ValueType::no)) {}
    static Value constant(ValueType type) {
        Value value;
        value.word_ = static_cast<std::uintptr_t>(type);
        return value;
    }

    // Where memory is exhausted these give `undefined` and mark it. A text whose first byte is that of a tag reads as
    // that constant, or as `undefined` where the tag promises more than a byte.
    static Value number(ScriptMemory& memory, double number) {
        return memory.take(numberCharge) ? Value(memory, number) : Value();
    }
    static Value text(ScriptMemory& memory, TextHold text);
    // The text of a name that does not begin like a tag.
    static Value plainText(ScriptMemory& memory, Text& name) {
        return memory.take(textCharge(name)) ? Value(memory, name) : Value();
    }
    static Value text(ScriptMemory& memory, std::string_view bytes) { return text(memory, makeText(memory, bytes)); }
    static Value clip(ScriptMemory& memory, ClipAnchor* anchor);  // null: the root timeline
    static Value object(ScriptObject& object);
    static Value function(ScriptFunction& function);

    Value(Value&& other) noexcept : word_(std::exchange(other.word_, undefinedWord)), payload_(other.payload_) {}
    Value& operator=(Value&& other) noexcept {
        std::swap(word_, other.word_);
        std::swap(payload_, other.payload_);
        return *this;
    }
    Value(const Value&) = delete;
    friend void swap(Value& a, Value& b) noexcept {
        std::swap(a.word_, b.word_);
        std::swap(a.payload_, b.payload_);
    }
    ~Value() {
        if (is(ValueType::number))
            memory().giveBack(numberCharge);
        else if (type() >= ValueType::object)
            release();
    }

    ValueType type() const { return static_cast<ValueType>(word_ & typeBits); }
    bool is(ValueType wanted) const { return type() == wanted; }

    double asNumber() const { return std::bit_cast<double>(payload_); }
    Text& asText() const { return *pointer<Text>(); }
    ClipAnchor* asAnchor() const { return pointer<ClipAnchor>(); }  // null: the root
    ScriptObject& asObject() const { return *pointer<ScriptObject>(); }
    ScriptFunction& asFunction() const { return *pointer<ScriptFunction>(); }

    // Numbers, texts and clip references are charged once more; objects and functions are shared.
    Value copy() const { return is(ValueType::number) ? number(memory(), asNumber()) : copyOther(); }

    // Another number in the place of one, which costs nothing.
    void setNumber(double number) { payload_ = std::bit_cast<std::uint64_t>(number); }

  private:
    Value(ScriptMemory& memory, double number)
        : word_(reinterpret_cast<std::uintptr_t>(&memory) | static_cast<std::uintptr_t>(ValueType::number)),
          payload_(std::bit_cast<std::uint64_t>(number)) {}

    Value(ScriptMemory& memory, Text& text)
        : word_(reinterpret_cast<std::uintptr_t>(&memory) | static_cast<std::uintptr_t>(ValueType::text)),
          payload_(reinterpret_cast<std::uintptr_t>(&text)) {
        ++text.holders;
    }

    static constexpr std::uintptr_t typeBits = 15;  // ScriptMemory lies at multiples of 16
    static constexpr auto undefinedWord = static_cast<std::uintptr_t>(ValueType::undefined);

    template <class T>
    T* pointer() const {
        return reinterpret_cast<T*>(static_cast<std::uintptr_t>(payload_));
    }
    ScriptMemory& memory() const { return *reinterpret_cast<ScriptMemory*>(word_ & ~typeBits); }
    void become(ScriptMemory* memory, ValueType type, const void* pointer) {
        word_ = reinterpret_cast<std::uintptr_t>(memory) | static_cast<std::uintptr_t>(type);
        payload_ = reinterpret_cast<std::uintptr_t>(pointer);
    }
    Value copyOther() const;
    void release();

    std::uintptr_t word_ = undefinedWord;  // the type, and where a charged value is charged
    std::uint64_t payload_ = 0;
};

template <>
inline constexpr std::uint32_t charge<class Value> = 4;

}  // namespace qel
