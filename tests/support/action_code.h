// Action code, piece by piece.
#pragma once

#include <bit>
#include <initializer_list>
#include <string_view>

#include "author/byte_writer.h"
#include "format/action_codes.h"

namespace qel::test {

using author::Bytes;

class ActionWriter {
  public:
    ActionWriter& act(Action action) { return byte(static_cast<std::uint8_t>(action)); }
    ActionWriter& act(Action action, const Bytes& operands) {
        act(action);
        word(operands.size());
        code_.insert(code_.end(), operands.begin(), operands.end());
        return *this;
    }

    ActionWriter& text(std::string_view text) {
        Bytes entry{static_cast<std::uint8_t>(PushType::text)};
        entry.insert(entry.end(), text.begin(), text.end());
        entry.push_back(0);
        return act(Action::push, entry);
    }
    ActionWriter& number(double number) {
        const auto bits = std::bit_cast<std::uint64_t>(number);
        Bytes entry{static_cast<std::uint8_t>(PushType::real)};
        for (const auto half : {static_cast<std::uint32_t>(bits >> 32), static_cast<std::uint32_t>(bits)})
            for (int shift = 0; shift < 32; shift += 8) entry.push_back(static_cast<std::uint8_t>(half >> shift));
        return act(Action::push, entry);
    }
    ActionWriter& constant(PushType type) { return act(Action::push, {static_cast<std::uint8_t>(type)}); }
    ActionWriter& truth(bool value) {
        return act(Action::push, {static_cast<std::uint8_t>(PushType::boolean), static_cast<std::uint8_t>(value)});
    }

    // name = what `value` leaves on the stack.
    template <class Push>
    ActionWriter& set(std::string_view name, Push value) {
        text(name);
        value(*this);
        return act(Action::setVariable);
    }
    ActionWriter& get(std::string_view name) { return text(name).act(Action::getVariable); }

    // Calls with arguments that lie on the stack, the last one pushed first.
    ActionWriter& call(std::string_view function, double count) {
        return number(count).text(function).act(Action::callFunction);
    }
    ActionWriter& method(std::string_view name) { return text(name).act(Action::callMethod); }

    ActionWriter& function(std::string_view name, std::initializer_list<std::string_view> parameters,
                           const Bytes& body) {
        Bytes operands;
        const auto add = [&operands](std::string_view text) {
            operands.insert(operands.end(), text.begin(), text.end());
            operands.push_back(0);
        };
        const auto addWord = [&operands](std::size_t value) {
            operands.push_back(static_cast<std::uint8_t>(value));
            operands.push_back(static_cast<std::uint8_t>(value >> 8));
        };
        add(name);
        addWord(parameters.size());
        for (const std::string_view parameter : parameters) add(parameter);
        addWord(body.size());
        act(Action::defineFunction, operands);
        code_.insert(code_.end(), body.begin(), body.end());
        return *this;
    }

    ActionWriter& jump(Action action, int offset) {
        return act(action, {static_cast<std::uint8_t>(offset), static_cast<std::uint8_t>(offset >> 8)});
    }

    std::size_t size() const { return code_.size(); }
    const Bytes& bytes() const { return code_; }

  private:
    ActionWriter& byte(std::uint8_t value) {
        code_.push_back(value);
        return *this;
    }
    void word(std::size_t value) {
        byte(static_cast<std::uint8_t>(value));
        byte(static_cast<std::uint8_t>(value >> 8));
    }

    Bytes code_;
};

}  // namespace qel::test
