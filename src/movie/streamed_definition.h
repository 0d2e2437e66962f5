// Definitions that the records of the timeline bring: decoded as their bytes arrive, one fed chunk at a time.
#pragma once

#include "movie/definition.h"

namespace qel {

struct Movie;

// A definition whose record has begun to arrive.
struct StreamedDefinition {
    Definition definition;     // without a character once it turned out to be broken
    std::uint32_t offset = 0;  // of its record in the content
    std::uint32_t length = 0;  // of its record
    std::uint32_t left = 0;    // bytes of its body still to come; 0: nothing is arriving
};

inline bool isArriving(const StreamedDefinition& streamed) { return streamed.left != 0; }

// Decodes the definition whose record begins at the movie's reader, and moves behind it. `nothing`: it goes on in the
// next feed, and bytes were asked for. brokenDefinition: a sprite or bitmap that is broken; other kinds are passed over
// and decoded anew where they are used.
Result takeDefinition(Movie& movie, const ScannedRecord& record);

// Goes on with the next fed bytes. Results as for takeDefinition.
Result continueStreamed(Movie& movie);

}  // namespace qel
