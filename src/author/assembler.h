// Makes action code of its listing: one action a line, by its name, with its operands behind it. docs/action-code.md
// describes the language; listActions (author/action_listing.h) writes it.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "author/byte_writer.h"

namespace qel::author {

// What is wrong with a listing, and on which of its lines, counted from 1.
struct ListingError : std::runtime_error {
    std::size_t line;
    ListingError(std::size_t itsLine, const std::string& message) : std::runtime_error(message), line(itsLine) {}
};

// Throws ListingError.
Bytes assembleActions(std::string_view listing);

}  // namespace qel::author
