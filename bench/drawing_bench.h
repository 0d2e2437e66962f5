// The drawing benchmarks: the scenes of bench/scenes.json, drawn by the player and by Cairo.
#pragma once

#include <cstdio>

namespace qel::bench {

// Names are drawScene/SCENE/WHAT. Throws std::runtime_error when the scenes cannot be read.
void registerDrawingBenchmarks();

// A table of what was measured, each scene beside Cairo and beside our aim; nothing when no scene was drawn.
void printDrawingSummary(std::FILE* to);

}  // namespace qel::bench
