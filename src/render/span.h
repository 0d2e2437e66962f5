// A run of pixels on one row of the screen that one fill paints.
#pragma once

#include <cstdint>

#include "render/pixel_rows.h"

namespace qel {

struct Span {
    PixelRun pixels;
    std::int32_t x = 0, y = 0;  // where the run begins on the screen
    std::int32_t cutOff = 0;    // pixels of the same span to the left of the run, on the screen but not to be painted
};

}  // namespace qel
