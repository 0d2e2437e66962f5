// Movies of a few frames for tests of the host and of the commands on it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "author/frame_items.h"
#include "author/movie_writer.h"

namespace qel::test {

constexpr std::uint16_t squareId = 2;
constexpr int squareSize = 8;

// One frame for each of the positions: a red square of 8 pixels on white, its left top corner there.
struct SquareMovie {
    std::uint16_t width = 16, height = 12;
    std::vector<Point> positions = {{0, 0}, {4, 2}, {8, 4}};
    std::uint16_t frameMs = 50;
    std::vector<author::Bytes> moreItems = {};  // of each frame, behind the square's
};

inline author::MovieFile squareMovieFile(const SquareMovie& of = {}) {
    using namespace author;
    MovieFile movie;
    movie.width = of.width;
    movie.height = of.height;
    movie.properties.stage({0, 0, static_cast<std::int16_t>(of.width), static_cast<std::int16_t>(of.height)})
        .frameDuration(of.frameMs)
        .frameCount(static_cast<std::uint16_t>(of.positions.size()))
        .background(0xFFFFFF)
        .dictionarySize(8);
    movie.records.push_back(backgroundColour(0xFFFFFF));
    movie.records.push_back(solidFill(1, {.colour = 0xFF0000}));
    Outline outline;
    outline.style({.line = {}, .fill0 = {}, .fill1 = 1}).moveTo({0, 0});
    outline.lineTo({squareSize, 0}).lineTo({squareSize, squareSize}).lineTo({0, squareSize}).lineTo({0, 0});
    movie.records.push_back(shape({.id = squareId,
                                   .bounds = {0, 0, squareSize, squareSize},
                                   .outline = outline,
                                   .bitmapFills = {},
                                   .gradientFills = {}}));
    for (std::size_t at = 0; at < of.positions.size(); ++at) {
        const Point to = of.positions[at];
        const Bytes there = move(0, {.a = fixedOne, .d = fixedOne, .tx = to.x, .ty = to.y});
        const Bytes more = at < of.moreItems.size() ? of.moreItems[at] : Bytes{};
        movie.records.push_back(frame(at == 0 ? joined({place(squareId, 0), there, more}) : joined({there, more})));
    }
    return movie;
}

inline author::Bytes squareMovie(const SquareMovie& of = {}) { return author::visFile(squareMovieFile(of)); }

}  // namespace qel::test
