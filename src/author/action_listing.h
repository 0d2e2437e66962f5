// Writes action code as a listing that assembles to the same bytes (author/assembler.h).
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace qel::author {

// Lines, each with its newline. Actions that run past their list, operands that are not as their action has them, and
// bodies that are cut off stand there as bytes. A listing that would grow beyond `mostBytes` ends with a comment that
// says so.
std::string listActions(std::span<const std::uint8_t> code, std::size_t mostBytes);

}  // namespace qel::author
