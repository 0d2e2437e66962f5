#include "script/value.h"

namespace qel {

Value Value::text(ScriptMemory& memory, TextHold text) {
    Value value;
    if (!text) return value;
    const auto first = static_cast<std::uint8_t>(text->bytes[0]);
    if (first >= static_cast<std::uint8_t>(ValueType::yes) && first <= static_cast<std::uint8_t>(ValueType::number))
        return first < static_cast<std::uint8_t>(ValueType::object) ? constant(ValueType{first}) : Value();
    if (!memory.take(textCharge(*text.get()))) return value;
    value.become(&memory, ValueType::text, text.get());
    ++text.get()->holders;
    return value;
}

Value Value::clip(ScriptMemory& memory, ClipAnchor* anchor) {
    Value value;
    if (!memory.take(clipCharge)) return value;
    value.become(&memory, ValueType::clip, anchor);
    if (anchor) holdAnchor(*anchor);
    return value;
}

Value Value::object(ScriptObject& object) {
    Value value;
    value.become(nullptr, ValueType::object, &object);
    holdObject(object);
    return value;
}

Value Value::function(ScriptFunction& function) {
    Value value;
    value.become(nullptr, ValueType::function, &function);
    return value;
}

Value Value::copyOther() const {
    switch (type()) {
        case ValueType::text: return text(memory(), TextHold(&asText()));
        case ValueType::clip: return clip(memory(), asAnchor());
        case ValueType::object: return object(asObject());
        case ValueType::function: return function(asFunction());
        default: return constant(type());
    }
}

void Value::release() {
    switch (type()) {
        case ValueType::text: {
            Text& text = asText();
            memory().giveBack(textCharge(text));
            if (--text.holders == 0) freeText(text);
            break;
        }
        case ValueType::clip:
            memory().giveBack(clipCharge);
            if (asAnchor()) letGoOfAnchor(*asAnchor());
            break;
        case ValueType::object: letGoOfObject(asObject()); break;
        default: break;
    }
}

}  // namespace qel
