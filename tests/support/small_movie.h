// The pieces of small movies: rectangles of one colour, sprites, and frames that move them.
#pragma once

#include <initializer_list>

#include "author/frame_items.h"
#include "author/movie_writer.h"

namespace qel::test {

using author::Bytes;
using author::MovieFile;

constexpr Matrix at(std::int16_t x, std::int16_t y) { return {.a = fixedOne, .d = fixedOne, .tx = x, .ty = y}; }

// A rectangle from (0, 0) filled with a style.
inline Bytes rectangle(std::uint16_t id, std::uint16_t fill, std::int16_t width, std::int16_t height) {
    author::Outline outline;
    outline.style({.line = {}, .fill0 = fill, .fill1 = {}}).moveTo({0, 0});
    outline.lineTo({width, 0}).lineTo({width, height}).lineTo({0, height}).lineTo({0, 0});
    return author::shape(
        {.id = id, .bounds = {0, 0, width, height}, .outline = outline, .bitmapFills = {}, .gradientFills = {}});
}

inline Bytes frameOf(std::initializer_list<Bytes> items) { return author::frame(author::joined(items)); }

// A sprite of the frame records given.
inline Bytes spriteOf(std::uint16_t id, std::initializer_list<Bytes> frames) {
    return author::sprite({.id = id,
                           .frameCount = static_cast<std::uint16_t>(frames.size()),
                           .labels = {},
                           .keyFrames = {},
                           .timeline = author::joined(frames)});
}

constexpr std::uint16_t red = 0xF800, green = 0x07E0, blue = 0x001F, white = 0xFFFF, black = 0x0000;

// A movie of the given size on white with the styles 1 red, 2 green, 3 blue, 40 ms a frame.
inline MovieFile smallMovie(std::uint16_t width, std::uint16_t height, std::initializer_list<Bytes> records) {
    MovieFile movie;
    movie.width = width;
    movie.height = height;
    movie.properties.frameDuration(40).dictionarySize(64);
    movie.records = {author::solidFill(1, {.colour = 0xFF0000}), author::solidFill(2, {.colour = 0x00FF00}),
                     author::solidFill(3, {.colour = 0x0000FF}), author::backgroundColour(0xFFFFFF)};
    movie.records.insert(movie.records.end(), records);
    return movie;
}

}  // namespace qel::test
