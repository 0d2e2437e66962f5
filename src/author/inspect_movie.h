// The readers of "VIS" content, one file a group of records. All offsets count from the start of the listing's content;
// a record's body is the half-open range `body` to `end`, which lies inside the content.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "author/inspect_listing.h"
#include "format/record_types.h"

namespace qel::author::inspector {

// Where a record lies.
struct RecordPlace {
    std::uint8_t type = 0;
    std::size_t offset = 0, body = 0, end = 0;
};

// A definition of the main record stream.
struct Definition {
    std::uint32_t offset, length;
    std::uint16_t id;
    CharacterKind kind;
};

struct DirectoryEntry {
    std::uint32_t part, offset, length;
    std::uint16_t id;
    std::uint8_t kind;
};

// What records say about other records. The checks that need all of it come last.
struct MovieFacts {
    std::size_t recordsEnd = 0;       // no read for records goes further
    std::uint32_t contentLength = 0;  // where the trailer blocks begin
    std::uint32_t headerPart = 0;
    std::uint32_t frameCount = 0;  // as announced
    std::uint32_t framesMet = 0;
    std::uint32_t dictionarySize = 0;
    bool hasDictionary = false;
    bool scanDefinitions = false;
    std::vector<Definition> definitions;          // by offset
    std::vector<DirectoryEntry> directory;        // the entries in use
    std::map<std::uint32_t, std::string> labels;  // of the movie's frames, by index; the first of each
    struct Identifier {
        std::uint32_t definedBy = 0;  // 1 + the index of the part with its first definition, or 0
        std::uint32_t namedBy = 0;    // the same for the first part that names it
        std::uint32_t namedAt = 0;    // the offset there
    };
    std::vector<Identifier> identifiers;  // as many as the largest one met asks for
};

// Reads a record's header at `at`. False when it does not lie whole before `limit`; that is the last part's problem
// then.
bool readRecordHeader(Listing& list, std::size_t at, std::size_t limit, RecordPlace& place);

// Whole "VIS" content, trailer blocks included. In a file of its own the header's contentLength bounds the records;
// what a "ZVIS" file expands to is read to its end.
enum class MovieSource : std::uint8_t { file, expanded };
void inspectMovie(Listing& list, MovieSource source);

// The blocks behind the movie data, from `at` on: as the header announces them. Answers where they end.
struct TrailerFlags {
    bool fontBlock = false, extensionBlock = false;
};
std::size_t inspectTrailers(Listing& list, std::size_t at, TrailerFlags flags);

// The records that come before the definitions.
void inspectMovieProperties(Listing& list, MovieFacts& facts, const RecordPlace& record);
void inspectCharacterDirectory(Listing& list, MovieFacts& facts, const RecordPlace& record);
// `count` entries of a u16 and a short text: frame labels, names of characters. What each entry and its two fields are
// called.
struct EntryNames {
    const char *entry, *number, *text;
};
void inspectNamedNumbers(Listing& list, const EntryNames& names, unsigned count, std::size_t begin, std::size_t end,
                         std::map<std::uint32_t, std::string>* collected = nullptr);
void inspectNameTable(Listing& list, const RecordPlace& record);
void inspectBlockTable(Listing& list, const RecordPlace& record);

// Definitions.
void inspectShape(Listing& list, MovieFacts& facts, const RecordPlace& record);
void inspectStyle(Listing& list, MovieFacts& facts, const RecordPlace& record);  // fills, lines, morph shapes
void inspectBitmap(Listing& list, MovieFacts& facts, const RecordPlace& record);
void inspectSound(Listing& list, MovieFacts& facts, const RecordPlace& record);
void inspectButton(Listing& list, MovieFacts& facts, const RecordPlace& record);  // both kinds
void inspectSprite(Listing& list, MovieFacts& facts, const RecordPlace& record);
void inspectTextField(Listing& list, MovieFacts& facts, const RecordPlace& record);
void inspectCompressionTable(Listing& list, MovieFacts& facts, const RecordPlace& record);

enum class TimelineOf : std::uint8_t { movie, sprite };
// A frame record, the `index`-th of its timeline, counted from 0. Only those of the movie's timeline define a
// character. Answers whether it is cached.
bool inspectFrame(Listing& list, MovieFacts& facts, const RecordPlace& record, TimelineOf owner, std::uint32_t index);

void inspectCommandList(Listing& list, MovieFacts& facts, std::size_t begin, std::size_t end);
// Adds how many actions the code has, and their listing where it is asked for.
void inspectActions(Listing& list, std::size_t begin, std::size_t end);

// Notes which identifiers are defined and which are named, by the part listed last. noCharacter is no reference.
void noteDefinition(Listing& list, MovieFacts& facts, std::uint16_t id, const RecordPlace& record);
void noteReference(Listing& list, MovieFacts& facts, std::uint16_t id, std::size_t offset);

}  // namespace qel::author::inspector
