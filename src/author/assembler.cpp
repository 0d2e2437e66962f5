#include "author/assembler.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <vector>

#include "author/action_forms.h"
#include "author/push_values.h"

namespace qel::author {
namespace {

constexpr std::size_t mostOperandBytes = 65535;

bool isLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }

// Code with labels of its own: a listing, or the body of a function. Where code goes on is known at its end.
struct Block {
    // A 16-bit operand that says how far a label is from the end of its action.
    struct Distance {
        std::size_t at;
        std::string label;
        OperandForm form;
        std::size_t line;
    };
    Bytes code;
    std::map<std::string, std::size_t> labels;
    std::vector<Distance> distances;
};

void setDistance(Block& block, const Block::Distance& distance) {
    const auto found = block.labels.find(distance.label);
    if (found == block.labels.end())
        throw ListingError(distance.line, "there is no label \"" + distance.label + "\" here");
    const auto end = static_cast<std::int64_t>(distance.at + 2);
    const std::int64_t offset = static_cast<std::int64_t>(found->second) - end;
    const bool jumps = distance.form == OperandForm::jump;
    if (offset < (jumps ? -32768 : 0) || offset > (jumps ? 32767 : 65535))
        throw ListingError(distance.line, "\"" + distance.label + "\" is " + std::to_string(offset) +
                                              " bytes away, which this action cannot reach");
    block.code[distance.at] = static_cast<std::uint8_t>(offset);
    block.code[distance.at + 1] = static_cast<std::uint8_t>(offset >> 8);
}

class Assembler {
  public:
    explicit Assembler(std::string_view listing) : rest_(listing) {}

    Bytes assemble() { return block(0); }

  private:
    using Words = std::vector<ListingWord>;
    using Kind = ListingWord::Kind;

    [[noreturn]] void fail(const std::string& message) const { throw ListingError(line_, message); }

    bool nextLine(Words& words) {
        if (rest_.empty()) return false;
        const std::size_t end = std::min(rest_.find('\n'), rest_.size());
        ++line_;
        words = listingWords(rest_.substr(0, end), line_);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return true;
    }

    // The lines up to the brace that closes this block, or to the end.
    Bytes block(int nesting) {
        const std::size_t begin = line_;
        Block current;
        Words words;
        for (;;) {
            if (!nextLine(words)) {
                if (nesting > 0) throw ListingError(begin, "the function's } is missing");
                break;
            }
            if (words.size() == 1 && words[0].kind == Kind::close) {
                if (nesting == 0) fail("there is no function that this } could end");
                break;
            }
            statement(current, words, nesting);
        }
        for (const Block::Distance& distance : current.distances) setDistance(current, distance);
        return std::move(current.code);
    }

    void statement(Block& block, Words& words, int nesting) {
        while (!words.empty() && words[0].kind == Kind::label) {
            if (!isLetter(words[0].text[0])) fail("a label begins with a letter");
            if (!block.labels.emplace(words[0].text, block.code.size()).second)
                fail("the label \"" + words[0].text + "\" stands here already");
            words.erase(words.begin());
        }
        if (words.empty()) return;
        if (words[0].kind != Kind::plain) fail("a line begins with the name of an action");
        if (words[0].text == rawBytesName) return raw(block, words, 1);
        if (words[0].text == rawActionName) return rawAction(block, words);
        const ActionForm* form = actionNamed(words[0].text);
        if (!form) fail("there is no action \"" + words[0].text + "\"" + suggestion(words[0].text));
        action(block, *form, words, nesting);
    }

    static std::string suggestion(std::string_view name) {
        const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
        for (const ActionForm& form : actionForms())
            if (std::ranges::equal(form.name, name, {}, lower, lower))
                return "; it is written " + std::string(form.name);
        return "";
    }

    void raw(Block& block, const Words& words, std::size_t first) {
        for (std::size_t i = first; i < words.size(); ++i)
            block.code.push_back(static_cast<std::uint8_t>(listedNumber(hexByte(words[i]), 0, 255, line_)));
    }

    // Bytes stand in raw lines as pairs of hexadecimal digits.
    ListingWord hexByte(const ListingWord& word) const {
        if (word.kind != Kind::plain || word.text.size() != 2) fail("bytes stand here as two hexadecimal digits each");
        return {.text = "0x" + word.text};
    }

    void rawAction(Block& block, const Words& words) {
        if (words.size() < 2) fail("behind Code stands an action's code, then the bytes of its operands");
        const std::int64_t code = listedNumber(hexByte(words[1]), 0, 255, line_);
        if (code < firstActionWithLength && words.size() > 2) fail("an action below 80 has no operands");
        head(block, static_cast<std::uint8_t>(code), words.size() - 2);
        raw(block, words, 2);
    }

    void head(Block& block, std::uint8_t code, std::size_t operandBytes) {
        if (operandBytes > mostOperandBytes) fail("the operands of an action have at most 65535 bytes");
        ByteWriter out;
        out.u8(code);
        if (code >= firstActionWithLength) out.u16(static_cast<std::uint32_t>(operandBytes));
        append(block, out.take());
    }

    static void append(Block& block, const Bytes& bytes) {
        block.code.insert(block.code.end(), bytes.begin(), bytes.end());
    }

    void action(Block& block, const ActionForm& form, const Words& words, int nesting) {
        if (form.operands[0] == OperandForm::function) return function(block, words, nesting);
        ByteWriter operands;
        std::size_t next = 1;
        for (const OperandForm operand : form.operands)
            if (operand != OperandForm::none) writeOperand(block, operands, operand, words, next);
        if (next < words.size()) fail("\"" + words[next].text + "\" is one word too many");
        const Bytes bytes = operands.take();
        head(block, static_cast<std::uint8_t>(form.action), bytes.size());
        append(block, bytes);
    }

    void writeOperand(Block& block, ByteWriter& operands, OperandForm form, const Words& words, std::size_t& next) {
        switch (form) {
            case OperandForm::entries:
                for (; next < words.size(); ++next) writePushValue(operands, words[next], line_);
                return;
            case OperandForm::constants: return writeConstants(operands, words, next);
            default: break;
        }
        if (next == words.size()) fail("an operand is missing behind " + words[0].text);
        const ListingWord& word = words[next++];
        switch (form) {
            case OperandForm::byte: operands.u8(number(word, 0, 255)); return;
            case OperandForm::word: operands.u16(number(word, 0, 65535)); return;
            case OperandForm::text: operands.text(textOf(word)).u8(0); return;
            default: return writeDistance(block, operands, form, word);
        }
    }

    std::uint32_t number(const ListingWord& word, std::int64_t least, std::int64_t most) const {
        return static_cast<std::uint32_t>(listedNumber(word, least, most, line_));
    }

    const std::string& textOf(const ListingWord& word) const {
        if (word.kind != Kind::text) fail("a text in quotes belongs here, not \"" + word.text + "\"");
        return word.text;
    }

    void writeConstants(ByteWriter& operands, const Words& words, std::size_t& next) {
        constexpr std::size_t most = 255;
        if (words.size() - next > most) fail("a pool holds at most 255 constants");
        operands.u8(static_cast<std::uint32_t>(words.size() - next)).u8(0);
        for (; next < words.size(); ++next) operands.text(textOf(words[next])).u8(0);
    }

    // A label, or a number of bytes from the end of the action.
    void writeDistance(Block& block, ByteWriter& operands, OperandForm form, const ListingWord& word) {
        if (word.kind == Kind::plain && isLetter(word.text[0])) {
            constexpr std::size_t actionHead = 3;
            block.distances.push_back({block.code.size() + actionHead, word.text, form, line_});
            operands.u16(0);
        } else {
            const bool jumps = form == OperandForm::jump;
            const ListingWord plain{word.kind, word.text.starts_with('+') ? word.text.substr(1) : word.text};
            operands.u16(number(plain, jumps ? -32768 : 0, jumps ? 32767 : 65535));
        }
    }

    void function(Block& block, const Words& words, int nesting) {
        if (words.size() < 3 || words.back().kind != Kind::open)
            fail("a function is written DefineFunction 'name' 'parameter' ... {");
        if (nesting == mostFunctionNesting) fail("functions stand at most 64 deep in functions");
        ByteWriter operands;
        operands.text(textOf(words[1])).u8(0).u16(static_cast<std::uint32_t>(words.size() - 3));
        for (std::size_t i = 2; i + 1 < words.size(); ++i) operands.text(textOf(words[i])).u8(0);
        const std::size_t line = line_;
        const Bytes body = this->block(nesting + 1);
        if (body.size() > mostOperandBytes) throw ListingError(line, "a function's body has at most 65535 bytes");
        const Bytes bytes = operands.u16(static_cast<std::uint32_t>(body.size())).take();
        head(block, static_cast<std::uint8_t>(Action::defineFunction), bytes.size());
        append(block, bytes);
        append(block, body);
    }

    std::string_view rest_;
    std::size_t line_ = 0;
};

}  // namespace

Bytes assembleActions(std::string_view listing) { return Assembler(listing).assemble(); }

}  // namespace qel::author
