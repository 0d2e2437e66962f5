// The words on a line of an action code listing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qel::author {

struct ListingWord {
    enum class Kind : unsigned char { plain, text, label, open, close } kind = Kind::plain;
    std::string text;  // of a text: its bytes; of a label: without its colon
};

// A line's words: texts in single or double quotes with escapes, names with a colon behind them, braces, and whatever
// else stands between blanks. A comment runs from // to the end. Throws ListingError, of `number`, for a text that is
// broken.
std::vector<ListingWord> listingWords(std::string_view line, std::size_t number);

// A text as a listing shows it, in single quotes.
std::string quotedText(std::string_view bytes);

}  // namespace qel::author
