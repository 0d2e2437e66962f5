// Pictures of single shapes, as a person can check them: each letter is a colour, a dot is the background.
#pragma once

#include "support/playback.h"
#include "support/small_movie.h"

namespace qel::test {

inline Bytes shapeOf(std::uint16_t id, const author::Outline& outline, bool hasFill = true) {
    return author::shape(
        {.id = id, .bounds = {}, .outline = outline, .hasFill = hasFill, .bitmapFills = {}, .gradientFills = {}});
}

// The first frame of a movie with these records behind the styles 1 red, 2 green, 3 blue.
inline Image firstFrame(std::uint16_t width, std::uint16_t height, std::initializer_list<Bytes> records) {
    const Playback playback = play(visFile(smallMovie(width, height, records)));
    if (playback.frames.empty()) return {};
    return playback.frames[0];
}

inline std::string picture(const Image& image) {
    return "\n" + sketch(image, {{white, '.'}, {red, 'r'}, {green, 'g'}, {blue, 'b'}});
}

}  // namespace qel::test
