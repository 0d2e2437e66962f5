// Collecting a record's body that the fed bytes hold only in part, across as many feeds as it takes.
#pragma once

#include "movie/movie.h"

namespace qel {

// Where the reader stands in the content.
inline std::uint32_t readerOffset(const Movie& movie) {
    return movie.position + static_cast<std::uint32_t>(movie.reader.cursor());
}

inline bool isCollecting(const Movie& movie) { return movie.sectionLength != 0; }

// Makes room for a body of `length` bytes that begins at the reader.
Result beginSection(Movie& movie, std::uint32_t length);

// Takes what was fed. `done` when the body is whole; `nothing`: more bytes were asked for.
Result collectSection(Movie& movie);

// Hands over the collected body; nothing is being collected then.
PoolArray<std::uint8_t> takeSection(Movie& movie);

}  // namespace qel
