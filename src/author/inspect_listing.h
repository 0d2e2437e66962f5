// How the inspector's readers write down what they find: parts, their fields, problems. The readers of all formats
// share it.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "author/inspect.h"
#include "format/geometry.h"

namespace qel::author::inspector {

// The inspection under construction. `content` is what offsets count in.
struct Listing {
    Inspection& out;
    std::span<const std::uint8_t> content;
    InspectionWishes wishes = {};
    std::uint8_t depth = 0;
    bool full = false;  // a limit is reached: nothing more is listed, loops end
};

// A part and, while this lives, the parent of the parts listed meanwhile. List a part's fields before its children.
class PartScope {
  public:
    PartScope(Listing& list, const char* name, int type, std::size_t offset, std::size_t length);
    ~PartScope() { --list_.depth; }
    PartScope(const PartScope&) = delete;
    PartScope& operator=(const PartScope&) = delete;
    std::uint32_t index() const { return index_; }

  private:
    Listing& list_;
    std::uint32_t index_;
};

// Fields go to the part listed last.
void addNumber(Listing& list, const char* name, std::int64_t value);
void addHex(Listing& list, const char* name, std::uint32_t value);
void addYesNo(Listing& list, const char* name, bool value);
void addWord(Listing& list, const char* name, std::string_view word);
void addText(Listing& list, const char* name, std::string_view text);
// Action code, where it is wished for.
void addCode(Listing& list, const char* name, std::span<const std::uint8_t> code);
void addNumbers(Listing& list, const char* name, std::span<const std::int32_t> numbers);
void addMatrix(Listing& list, const char* name, const Matrix& matrix);

// Problems of the part listed last, or of an earlier one. printf style.
void addError(Listing& list, std::size_t offset, const char* format, ...) __attribute__((format(printf, 3, 4)));
void addWarning(Listing& list, std::size_t offset, const char* format, ...) __attribute__((format(printf, 3, 4)));
void addProblemOf(Listing& list, std::uint32_t part, Severity severity, std::size_t offset, const char* format, ...)
    __attribute__((format(printf, 5, 6)));

}  // namespace qel::author::inspector
