#include "author/listing_words.h"

#include <algorithm>
#include <cctype>

#include "author/assembler.h"

namespace qel::author {
namespace {

constexpr std::string_view digits = "0123456789ABCDEF";

struct Escape {
    char letter, byte;
};
constexpr Escape escapes[] = {{'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'\\', '\\'}, {'\'', '\''}, {'"', '"'}};

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
bool isQuote(char c) { return c == '\'' || c == '"'; }

std::size_t digitOf(char c) { return digits.find(static_cast<char>(std::toupper(static_cast<unsigned char>(c)))); }

class WordReader {
  public:
    WordReader(std::string_view line, std::size_t number) : line_(line), number_(number) {}

    std::vector<ListingWord> read() {
        std::vector<ListingWord> words;
        while (skipBlanks()) words.push_back(word());
        return words;
    }

  private:
    bool skipBlanks() {
        while (at_ < line_.size() && isBlank(line_[at_])) ++at_;
        return at_ < line_.size() && !isComment();
    }
    bool isComment() const { return line_.substr(at_).starts_with("//"); }

    ListingWord word() {
        const char first = line_[at_];
        if (isQuote(first)) return {ListingWord::Kind::text, text()};
        if (first == '{' || first == '}') {
            ++at_;
            return {first == '{' ? ListingWord::Kind::open : ListingWord::Kind::close, std::string(1, first)};
        }
        const std::size_t begin = at_;
        const auto goesOn = [&](char c) { return !isBlank(c) && !isQuote(c) && c != '{' && c != '}' && !isComment(); };
        while (at_ < line_.size() && goesOn(line_[at_])) ++at_;
        const std::string_view plain = line_.substr(begin, at_ - begin);
        if (plain.size() > 1 && plain.ends_with(':'))
            return {ListingWord::Kind::label, std::string(plain.substr(0, plain.size() - 1))};
        return {ListingWord::Kind::plain, std::string(plain)};
    }

    std::string text() {
        const char quote = line_[at_++];
        std::string bytes;
        while (at_ < line_.size() && line_[at_] != quote) bytes += line_[at_] == '\\' ? escaped() : line_[at_++];
        if (at_ == line_.size()) throw ListingError(number_, "a text has no closing quote");
        ++at_;
        if (bytes.find('\0') != std::string::npos)
            throw ListingError(number_, "a text holds no zero byte, which would end it");
        return bytes;
    }

    char escaped() {
        ++at_;
        const char letter = at_ < line_.size() ? line_[at_++] : '\0';
        if (letter == 'x' && at_ + 1 < line_.size()) {
            const std::size_t high = digitOf(line_[at_]), low = digitOf(line_[at_ + 1]);
            at_ += 2;
            if (high != std::string_view::npos && low != std::string_view::npos)
                return static_cast<char>(high << 4 | low);
        }
        const auto found = std::ranges::find(escapes, letter, &Escape::letter);
        if (found == std::end(escapes))
            throw ListingError(number_, R"(behind a \ stands one of n r t \ ' " or x and two hexadecimal digits)");
        return found->byte;
    }

    std::string_view line_;
    std::size_t number_;
    std::size_t at_ = 0;
};

}  // namespace

std::vector<ListingWord> listingWords(std::string_view line, std::size_t number) {
    return WordReader(line, number).read();
}

std::string quotedText(std::string_view bytes) {
    std::string text = "'";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const auto escape = std::ranges::find(escapes, c, &Escape::byte);
        if (c != '"' && escape != std::end(escapes))
            text += {'\\', escape->letter};
        else if (byte >= 0x20 && byte < 0x7F)
            text += c;
        else
            text += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
    }
    return text + "'";
}

}  // namespace qel::author
