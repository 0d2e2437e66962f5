// The areas of the screen that a frame draws again: up to 20 rectangles that never overlap, so that drawing an object
// once in each of them shows exactly what drawing everything would show. More than that stands for the whole screen.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "format/geometry.h"

namespace qel {

class RedrawRegion {
  public:
    static constexpr unsigned capacity = 20;

    // Rectangles have inclusive maxima. The screen clips what is added.
    void setScreen(const Rect& screen) {
        screen_ = screen;
        clear();
    }
    const Rect& screen() const { return screen_; }

    void clear() { count_ = 0; }
    void add(const Rect& area);
    void addAll();  // the whole screen
    std::span<const Rect> areas() const { return {areas_.data(), count_}; }
    bool intersects(const Rect& area) const;

  private:
    std::array<Rect, capacity> areas_{};
    unsigned count_ = 0;
    Rect screen_{0, 0, -1, -1};
};

constexpr bool isEmpty(const Rect& area) { return area.xMin > area.xMax || area.yMin > area.yMax; }

constexpr Rect intersection(const Rect& a, const Rect& b) {
    return {a.xMin > b.xMin ? a.xMin : b.xMin, a.yMin > b.yMin ? a.yMin : b.yMin, a.xMax < b.xMax ? a.xMax : b.xMax,
            a.yMax < b.yMax ? a.yMax : b.yMax};
}

// The box around both, none of them empty.
constexpr Rect boxAround(const Rect& a, const Rect& b) {
    return {a.xMin < b.xMin ? a.xMin : b.xMin, a.yMin < b.yMin ? a.yMin : b.yMin, a.xMax > b.xMax ? a.xMax : b.xMax,
            a.yMax > b.yMax ? a.yMax : b.yMax};
}

}  // namespace qel
