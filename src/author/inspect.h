// The inspector: what a content file holds, part by part, and where it is broken. It shares no code with the player but
// the numbers of format/, so the two are independent readings of one format and each checks the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "format/file_header.h"

namespace qel::author {

inline constexpr std::uint32_t maxInspectedBytes = 256u << 20;   // larger files are refused by the caller
inline constexpr std::uint32_t maxInspectedParts = 1'000'000;    // what lies behind them is reported as not looked at
inline constexpr std::uint32_t maxInspectedNumbers = 4'000'000;  // of lists, together; the same
inline constexpr std::uint32_t maxListedCode = 64u << 20;        // bytes of action listings, together; the same
inline constexpr std::uint32_t maxListedProblems = 1000;         // more are only counted

enum class FieldKind : std::uint8_t {
    number,
    hex,
    yesNo,
    word,     // a name of this program's, stored as a text is
    text,     // content bytes as they are: `count` bytes of Inspection::texts from `value`
    lines,    // words in lines, each with its newline, stored as a text is
    numbers,  // `count` entries of Inspection::numbers from `value`
    matrix,   // six of them: a, b, c, d (16.16 fixed point), tx, ty (pixels)
};

// One named value. Names are lower camel case and stay the same from release to release.
struct InspectionField {
    const char* name;
    std::int64_t value;
    std::uint32_t count;
    FieldKind kind;
};

// A piece of the file: the header, a record, an item of a frame, ... Its fields end where the next part's begin.
struct InspectionPart {
    const char* name;
    std::uint32_t offset, length;  // bytes; the length covers the part's own header and is cut at the end of the file
    std::uint32_t firstField;
    std::int16_t type;  // the number that the content stores, or -1
    std::uint8_t depth;
};

enum class Severity : std::uint8_t {
    warning,  // it plays, but hardly as it was meant
    error,    // the file is broken
};

struct InspectionProblem {
    std::uint32_t part;    // index
    std::uint32_t offset;  // of the byte in question
    Severity severity;
    std::string text;
};

inline constexpr std::uint32_t noPart = 0xFFFFFFFF;

// The tree of parts, written flat: each part stands before the parts it holds, and `depth` tells them apart.
struct Inspection {
    ContentFamily family = ContentFamily::unknown;
    std::uint32_t fileLength = 0;
    std::vector<InspectionPart> parts;
    std::vector<InspectionField> fields;
    std::string texts;
    std::vector<std::int32_t> numbers;
    std::uint32_t codeListed = 0;             // bytes of action listings
    std::vector<InspectionProblem> problems;  // by part, then in the order of finding
    std::uint32_t errorCount = 0, warningCount = 0;
    // The part that holds the expanded content of a "ZVIS" file, or noPart. From there on offsets count from the start
    // of the expanded content, not of the file.
    std::uint32_t expandedPart = noPart;
};

struct InspectionWishes {
    bool actions = false;  // action code is listed, as field "code"
};

// Reads content of any length up to maxInspectedBytes and whatever its bytes. The result keeps no pointer to `bytes`.
Inspection inspectContent(std::span<const std::uint8_t> bytes, InspectionWishes wishes = {});

// The fields of a part.
std::span<const InspectionField> fieldsOf(const Inspection& inspection, std::uint32_t part);

// "VIS", "ZVIS", "SAF", "MSF/MSS" or "unknown".
std::string_view familyName(ContentFamily family);

// The listings: a table for people, a JSON object (one line a part) for programs. In the table, bytes of content texts
// that are not printable ASCII stand as \xNN; in JSON they are taken byte for byte as Latin-1. `title` is what the
// listing calls the file.
std::string inspectionText(const Inspection& inspection, std::string_view title);
std::string inspectionJson(const Inspection& inspection, std::string_view title);

}  // namespace qel::author
