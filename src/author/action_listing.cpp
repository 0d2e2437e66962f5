#include "author/action_listing.h"

#include <cstdio>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "author/action_forms.h"
#include "author/listing_words.h"
#include "author/push_values.h"

namespace qel::author {
namespace {

using Code = std::span<const std::uint8_t>;

// One action of a block. `size` covers its body, where it is a function.
struct ListedAction {
    const ActionForm* form;  // null: listed as bytes
    std::uint8_t code;
    Code operands;
    Code body;
    std::size_t size;
};

// Operands, read one after another.
class OperandReader {
  public:
    explicit OperandReader(Code bytes) : rest_(bytes) {}

    std::uint32_t number(std::size_t bytes) {
        std::uint32_t value = 0;
        if (!need(bytes)) return 0;
        for (std::size_t i = 0; i < bytes; ++i) value |= std::uint32_t{rest_[i]} << (8 * i);
        rest_ = rest_.subspan(bytes);
        return value;
    }
    std::string_view text() {
        std::size_t length = 0;
        while (length < rest_.size() && rest_[length] != 0) ++length;
        if (!need(length + 1)) return {};
        const std::string_view text(reinterpret_cast<const char*>(rest_.data()), length);
        rest_ = rest_.subspan(length + 1);
        return text;
    }
    bool whole() const { return whole_; }
    bool used() const { return whole_ && rest_.empty(); }

  private:
    bool need(std::size_t bytes) {
        whole_ = whole_ && bytes <= rest_.size();
        return whole_;
    }

    Code rest_;
    bool whole_ = true;
};

std::string hexBytes(Code bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, " %02X", unsigned{byte});
        text += digits;
    }
    return text;
}

// A function's name and parameters as they are listed, and the size of its body. Nothing for broken operands.
struct FunctionHead {
    std::string words;
    std::size_t bodySize = 0;
};
std::optional<FunctionHead> functionHead(Code operands) {
    OperandReader reader(operands);
    FunctionHead head;
    head.words = " " + quotedText(reader.text());
    const std::uint32_t parameters = reader.number(2);
    for (std::uint32_t i = 0; i < parameters && reader.whole(); ++i) head.words += " " + quotedText(reader.text());
    head.bodySize = reader.number(2);
    if (!reader.used()) return std::nullopt;
    return head;
}

// How far a jump or a skip leads from the end of its action.
std::optional<std::int64_t> distanceOf(const ListedAction& action) {
    if (!action.form || action.operands.size() != 2) return std::nullopt;
    const int distance = action.operands[0] | action.operands[1] << 8;
    if (action.form->operands[0] == OperandForm::skip) return distance;
    if (action.form->operands[0] == OperandForm::jump) return static_cast<std::int16_t>(distance);
    return std::nullopt;
}

// The action at `at`; nothing where it runs past the end.
std::optional<ListedAction> actionAt(Code code, std::size_t at, int nesting) {
    ListedAction action{actionOf(code[at]), code[at], {}, {}, 1};
    if (code[at] < firstActionWithLength) return action;
    constexpr std::size_t head = 3;
    if (code.size() - at < head) return std::nullopt;
    const std::size_t length = code[at + 1] | std::size_t{code[at + 2]} << 8;
    if (length > code.size() - at - head) return std::nullopt;
    action.operands = code.subspan(at + head, length);
    action.size = head + length;
    if (action.form && action.form->operands[0] == OperandForm::function) {
        const std::optional<FunctionHead> function = functionHead(action.operands);
        const std::size_t left = code.size() - at - action.size;
        if (!function || function->bodySize > left || nesting == mostFunctionNesting) {
            action.form = nullptr;
        } else {
            action.body = code.subspan(at + action.size, function->bodySize);
            action.size += function->bodySize;
        }
    }
    return action;
}

class ActionLister {
  public:
    explicit ActionLister(std::size_t mostBytes) : mostBytes_(mostBytes) {}

    std::string list(Code code) {
        block(code, 0);
        return std::move(out_);
    }

  private:
    // Places in a block that its jumps lead to, and what they are called.
    using Labels = std::map<std::size_t, std::string>;

    Labels labelsOf(Code code, int nesting) {
        Labels targets;
        std::set<std::size_t> begins;  // of actions; the end of the code counts as one
        std::size_t at = 0;
        while (at < code.size()) {
            begins.insert(at);
            const std::optional<ListedAction> action = actionAt(code, at, nesting);
            if (!action) break;
            at += action->size;
            if (const std::optional<std::int64_t> distance = distanceOf(*action)) {
                const std::int64_t target = static_cast<std::int64_t>(at) + *distance;
                if (target >= 0) targets[static_cast<std::size_t>(target)];
            }
        }
        if (at == code.size()) begins.insert(at);
        std::erase_if(targets, [&](const auto& target) { return !begins.contains(target.first); });
        for (auto& [place, name] : targets) name = "label" + std::to_string(++labelCount_);
        return targets;
    }

    void block(Code code, int nesting) {
        const Labels labels = labelsOf(code, nesting);
        const auto label = [&](std::size_t at) {
            const auto found = labels.find(at);
            if (found != labels.end()) line(nesting, found->second + ":");
        };
        for (std::size_t at = 0; !full_;) {
            label(at);
            if (at == code.size()) return;
            const std::optional<ListedAction> action = actionAt(code, at, nesting);
            if (!action) return line(nesting + 1, std::string(rawBytesName) + hexBytes(code.subspan(at)));
            at += action->size;
            show(*action, at, labels, nesting);
        }
    }

    void show(const ListedAction& action, std::size_t end, const Labels& labels, int nesting) {
        if (action.form && action.form->operands[0] == OperandForm::function) {
            line(nesting + 1, std::string(action.form->name) + functionHead(action.operands)->words + " {");
            block(action.body, nesting + 1);
            return line(nesting + 1, "}");
        }
        std::string text;
        if (action.form && operandText(action, end, labels, text))
            return line(nesting + 1, std::string(action.form->name) + text);
        line(nesting + 1, std::string(rawActionName) + hexBytes({&action.code, 1}) + hexBytes(action.operands));
    }

    static bool operandText(const ListedAction& action, std::size_t end, const Labels& labels, std::string& text) {
        if (const std::optional<std::int64_t> distance = distanceOf(action)) {
            const auto found = labels.find(static_cast<std::size_t>(static_cast<std::int64_t>(end) + *distance));
            text =
                found != labels.end() ? " " + found->second : (*distance < 0 ? " " : " +") + std::to_string(*distance);
            return true;
        }
        OperandReader reader(action.operands);
        for (const OperandForm form : action.form->operands) {
            switch (form) {
                case OperandForm::none: break;
                case OperandForm::byte: text += " " + std::to_string(reader.number(1)); break;
                case OperandForm::word: text += " " + std::to_string(reader.number(2)); break;
                case OperandForm::text: text += " " + quotedText(reader.text()); break;
                case OperandForm::entries: return listPushValues(action.operands, text);
                case OperandForm::constants: {
                    const std::uint32_t count = reader.number(1);
                    if (reader.number(1) != 0) return false;
                    for (std::uint32_t i = 0; i < count && reader.whole(); ++i) text += " " + quotedText(reader.text());
                    break;
                }
                case OperandForm::jump:
                case OperandForm::skip:
                case OperandForm::function: return false;
            }
        }
        return reader.used();
    }

    // Labels stand a step further left than actions.
    void line(int steps, const std::string& text) {
        constexpr std::size_t stepWidth = 4;
        if (full_) return;
        full_ = out_.size() + text.size() > mostBytes_;
        if (!full_) out_.append(stepWidth * static_cast<std::size_t>(steps), ' ');
        out_ += full_ ? "// the listing is too long: what follows is left out" : text;
        out_ += '\n';
    }

    std::size_t mostBytes_;
    std::string out_;
    bool full_ = false;
    int labelCount_ = 0;
};

}  // namespace

std::string listActions(Code code, std::size_t mostBytes) { return ActionLister(mostBytes).list(code); }

}  // namespace qel::author
