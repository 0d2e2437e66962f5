// The tables in front of a movie's properties that say where in the content something lies.
#pragma once

#include <vector>

#include "author/movie_writer.h"

namespace qel::author {

// A frame whose action items scripts call.
struct CallableFrame {
    std::size_t record = 0;   // index in MovieFile::records
    std::uint16_t frame = 0;  // counted from 0
    Location items;           // in that record
};

struct LeadingTables {
    std::uint16_t directorySize = 0;  // above every identifier
    bool hasDirectory = false;
    std::vector<CallableFrame> callables;
    std::vector<Name> names;
};

// Adds the directory, the block table and the name table, those that are asked for. Everything else of the movie is
// there already. Throws std::logic_error for what they cannot hold.
void addLeadingTables(MovieFile& movie, const LeadingTables& tables);

}  // namespace qel::author
