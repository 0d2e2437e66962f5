#include "movie/section.h"

#include <algorithm>

namespace qel {

Result beginSection(Movie& movie, std::uint32_t length) {
    if (failed(movie.section.reserve(movie.pool, length))) return Result::outOfMemory;
    movie.sectionLength = length;
    movie.sectionOffset = readerOffset(movie);
    return Result::done;
}

Result collectSection(Movie& movie) {
    const std::size_t missing = movie.sectionLength - movie.section.size();
    for (const std::uint8_t byte : movie.reader.take(std::min(missing, movie.reader.left())))
        movie.section.appendReserved(byte);
    if (movie.section.size() == movie.sectionLength) return Result::done;
    askForBytes(movie, readerOffset(movie));
    return Result::nothing;
}

PoolArray<std::uint8_t> takeSection(Movie& movie) {
    movie.sectionLength = 0;
    return std::move(movie.section);
}

}  // namespace qel
