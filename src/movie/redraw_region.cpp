#include "movie/redraw_region.h"

namespace qel {

void RedrawRegion::add(const Rect& area) {
    Rect added = intersection(area, screen_);
    if (isEmpty(added)) return;
    // Whatever it touches becomes part of it; the larger rectangle may touch others in turn.
    for (unsigned i = 0; i < count_;) {
        if (isEmpty(intersection(areas_[i], added))) {
            ++i;
            continue;
        }
        added = boxAround(areas_[i], added);
        areas_[i] = areas_[--count_];
        i = 0;
    }
    if (count_ == capacity) return addAll();
    areas_[count_++] = added;
}

void RedrawRegion::addAll() {
    count_ = 0;
    if (isEmpty(screen_)) return;
    areas_[count_++] = screen_;
}

bool RedrawRegion::intersects(const Rect& area) const {
    for (const Rect& mine : areas())
        if (!isEmpty(intersection(mine, area))) return true;
    return false;
}

}  // namespace qel
