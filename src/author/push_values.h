// The values of Push as a listing writes them.
#pragma once

#include "author/byte_writer.h"
#include "author/listing_words.h"

namespace qel::author {

// Writes one entry: its type byte and its data. Throws ListingError, of `line`.
void writePushValue(ByteWriter& out, const ListingWord& word, std::size_t line);

// A whole number as it stands in a listing, decimal or 0x…. Throws ListingError, of `line`, for others and for those
// outside the limits.
std::int64_t listedNumber(const ListingWord& word, std::int64_t least, std::int64_t most, std::size_t line);

// Reads entries of Push to the end and adds each to `text` behind a blank. False where they are no whole entries:
// `text` is of no use then.
bool listPushValues(std::span<const std::uint8_t> entries, std::string& text);

}  // namespace qel::author
