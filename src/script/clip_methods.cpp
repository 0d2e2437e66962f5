#include "script/clip_methods.h"

#include "movie/movie.h"
#include "movie/refresh.h"
#include "script/clip_paths.h"
#include "script/conversions.h"
#include "script/scope.h"
#include "script/script_state.h"

namespace qel {
namespace {

// The clip that an argument names, by reference or by path.
bool argumentClip(Movie& movie, const Value& value, Target& target) {
    if (value.is(ValueType::clip)) {
        target = Target(value.asAnchor());
        return true;
    }
    if (!value.is(ValueType::text)) return false;
    ClipInstance* clip = resolveTarget(movie, value.asText().view());
    ClipAnchor* anchor = clip ? anchorOf(movie, *clip) : nullptr;
    if (anchor) target = Target(anchor);
    return anchor != nullptr;
}

bool within(int value, int low, int high) { return value >= low && value <= high; }

// Whether a corner of one box lies in the other, edges included.
bool hasCornerIn(const Rect& corners, const Rect& box) {
    for (const int x : {corners.xMin, corners.xMax})
        for (const int y : {corners.yMin, corners.yMax})
            if (within(x, box.xMin, box.xMax) && within(y, box.yMin, box.yMax)) return true;
    return false;
}

}  // namespace

Rect boxOf(Movie& movie, const Target& target) {
    // Objects find their places when a frame is drawn; whoever measures wants to know now.
    std::size_t objects = 0;
    for (const DisplayObject* each = movie.root.first; each; each = nextInDrawingOrder(each)) ++objects;
    spend(movie.scripts, objects);
    const Result refreshed = refreshObjects(movie);
    if (failed(refreshed)) failRun(movie.scripts, refreshed);
    Rect box{0, 0, -1, -1};
    if (const ClipInstance* clip = target.clip()) {
        box = boundsOf(*clip);
    } else {
        for (const DisplayObject* object = movie.root.first; object; object = object->next) {
            const Rect each = boundsOf(*object);
            if (!isEmpty(each)) box = isEmpty(box) ? each : boxAround(box, each);
        }
    }
    return isEmpty(box) ? Rect{} : box;
}

Value getBounds(Movie& movie, const Target& target, Arguments arguments) {
    ScriptMemory& memory = movie.scripts.memory;
    const Rect box = boxOf(movie, target);
    int x = 0, y = 0;
    const auto subtract = [&](const Target& from) {
        if (const ClipInstance* clip = from.clip()) {
            x += clip->matrix.tx;
            y += clip->matrix.ty;
        }
    };
    subtract(target);
    if (!arguments.empty()) {
        Target other;
        if (!argumentClip(movie, arguments[0], other)) return {};
        subtract(other);
    }
    ScriptObject* bounds = newObject(movie.scripts.objects, "Object");
    if (!bounds) return {};
    Value result = Value::object(*bounds);
    const auto set = [&](const char* name, int value) {
        setPropertyValue(memory, *bounds, name, Value::number(memory, value));
    };
    set("xMin", box.xMin - x);
    set("xMax", box.xMax - x);
    set("yMin", box.yMin - y);
    set("yMax", box.yMax - y);
    return result;
}

Value hitTest(Movie& movie, const Target& target, Arguments arguments) {
    if (target.isRoot()) return Value(true);
    if (arguments.empty()) return Value(false);
    const Rect own = boxOf(movie, target);
    if (arguments.size() == 1) {
        Target other;
        if (!argumentClip(movie, arguments[0], other) || other.isGone()) return Value(false);
        const Rect box = boxOf(movie, other);
        return Value(hasCornerIn(box, own) || hasCornerIn(own, box));
    }
    if (!arguments[0].is(ValueType::number) || !arguments[1].is(ValueType::number)) return {};
    const double x = arguments[0].asNumber(), y = arguments[1].asNumber();
    return Value(own.xMin < x && x < own.xMax && own.yMin < y && y < own.yMax);
}

void moveCoordinates(Movie& movie, const Target& target, Arguments arguments, int direction) {
    const ClipInstance* clip = target.clip();
    if (!clip || arguments.empty() || !arguments[0].is(ValueType::object)) return;
    ScriptMemory& memory = movie.scripts.memory;
    ScriptObject& object = arguments[0].asObject();
    for (const auto& [name, by] : {std::pair{"x", clip->matrix.tx}, {"y", clip->matrix.ty}}) {
        const Name key = makeName(memory, name);
        const Value* before = key ? propertyOf(object, key) : nullptr;
        const double number = before ? numericValue(*before) : 0;
        setPropertyValue(memory, object, key, Value::number(memory, number + direction * by));
    }
}

}  // namespace qel
