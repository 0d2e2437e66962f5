// Any bytes as a picture: it is refused, or a movie of it is built.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "author/movie_writer.h"
#include "author/source_movie.h"
#include "author/svg_transform.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace qel::author;
    try {
        std::vector<std::string> warnings;
        const MovieFile movie =
            buildPictureMovie({reinterpret_cast<const char*>(data), size}, "picture.svg", 1, warnings);
        if (visFile(movie).empty()) __builtin_trap();
    } catch (const SourceError&) {
    } catch (const SvgError&) {}
    return 0;
}
