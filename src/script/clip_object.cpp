#include "script/clip_object.h"

#include <cmath>

#include "movie/movie.h"
#include "movie/placement.h"
#include "script/clip_methods.h"
#include "script/clip_paths.h"
#include "script/conversions.h"
#include "script/frame_navigation.h"
#include "script/matrix_parts.h"
#include "script/numbers.h"
#include "script/scope.h"

namespace qel {
namespace {

enum class Property : std::uint8_t {
    x,
    y,
    xScale,
    yScale,
    currentFrame,
    totalFrames,
    alpha,
    visible,
    width,
    height,
    rotation,
    target,
    framesLoaded,
    name,
};

constexpr double hundred = 100, alphaUnit = 0.39215686274509803, alphaScale = 2.5500000000000003;

// The multiplier tells it, until a script sets the alpha: then the offset does.
double alphaOf(const ClipInstance& clip) {
    const ColourTransform& colours = clip.colours;
    return (colours.alphaMultiplier == 0 ? colours.alphaOffset : colours.alphaMultiplier) * alphaUnit;
}

Value rootProperty(Movie& movie, Property property) {
    ScriptMemory& memory = movie.scripts.memory;
    const auto number = [&](double value) { return Value::number(memory, value); };
    switch (property) {
        case Property::x:
        case Property::y:
        case Property::rotation: return number(0);
        case Property::xScale:
        case Property::yScale:
        case Property::alpha: return number(hundred);
        case Property::currentFrame: return number(currentFrameOf(movie, {}));
        case Property::totalFrames: return number(frameCountOf(movie, {}));
        case Property::visible: return Value(true);
        case Property::width:
        case Property::height: {
            const Rect box = boxOf(movie, {});
            return number(property == Property::width ? box.xMax - box.xMin : box.yMax - box.yMin);
        }
        case Property::target: return Value::text(memory, "_level0");
        case Property::name: return Value::text(memory, "_root");
        case Property::framesLoaded: break;
    }
    return {};
}

Value clipProperty(Movie& movie, const Target& target, ClipInstance& clip, Property property) {
    ScriptMemory& memory = movie.scripts.memory;
    const auto number = [&](double value) { return Value::number(memory, value); };
    switch (property) {
        case Property::x: return number(clip.matrix.tx);
        case Property::y: return number(clip.matrix.ty);
        case Property::xScale: return number(partsOf(clip.matrix).xScale * hundred);
        case Property::yScale: return number(partsOf(clip.matrix).yScale * hundred);
        case Property::currentFrame: return number(currentFrameOf(movie, target));
        case Property::totalFrames: return number(frameCountOf(movie, target));
        case Property::alpha: return number(alphaOf(clip));
        case Property::visible: return Value(clip.visible);
        case Property::width:
        case Property::height: {
            const Rect box = boxOf(movie, target);
            return number(property == Property::width ? box.xMax - box.xMin : box.yMax - box.yMin);
        }
        case Property::rotation: return number(partsOf(clip.matrix).rotation);
        case Property::target: return Value::text(memory, clipDotPath(movie, target.anchor()));
        case Property::name: return Value::text(memory, clip.name.begin());
        case Property::framesLoaded: break;
    }
    return {};
}

void applyMatrix(ClipInstance& clip, const Matrix& matrix) {
    setMatrix(clip, matrix);
    clip.matrixFromScript = true;
}

void setPart(ClipInstance& clip, Property property, double value) {
    MatrixParts parts = partsOf(clip.matrix);
    if (property == Property::xScale) parts.xScale = value * 0.01;
    if (property == Property::yScale) parts.yScale = value * 0.01;
    if (property == Property::rotation) {
        parts.skew += value - parts.rotation;
        parts.rotation = value;
    }
    applyMatrix(clip, matrixOf(parts, clip.matrix));
}

// Sizes below ten pixels that would make the clip smaller are ignored, and so is a size for a clip that has none.
void setSize(Movie& movie, const Target& target, ClipInstance& clip, Property property, double value) {
    const Rect box = boxOf(movie, target);
    const int before = property == Property::width ? box.xMax - box.xMin : box.yMax - box.yMin;
    const std::int32_t wanted = toInt32(value);
    constexpr int least = 10;
    if (before == 0 || (wanted < least && wanted < before)) return;
    MatrixParts parts = partsOf(clip.matrix);
    double& scale = property == Property::width ? parts.xScale : parts.yScale;
    scale = wanted * scale / before;
    applyMatrix(clip, matrixOf(parts, clip.matrix));
}

void setClipAlpha(ClipInstance& clip, const Value& value) {
    if (!value.is(ValueType::number) || !std::isfinite(value.asNumber())) return;
    ColourTransform colours = clip.colours;
    colours.alphaMultiplier = 0;
    colours.alphaOffset = static_cast<std::int16_t>(toUint16(value.asNumber() * alphaScale));
    setColours(clip, colours);
}

void setName(Movie& movie, ClipInstance& clip, const Value& value) {
    constexpr std::uint8_t leastFirstByte = 14;
    if (!value.is(ValueType::text)) return;
    const std::string_view name = value.asText().view();
    if (name.empty() || static_cast<std::uint8_t>(name[0]) < leastFirstByte) return;
    PoolText copy;
    if (failed(copy.assign(movie.pool, {name.data(), name.size() + 1})))
        movie.scripts.memory.exhausted = true;
    else
        clip.name = std::move(copy);
}

// False: the property is not written.
bool write(Movie& movie, const Target& target, ClipInstance& clip, Property property, const Value& value) {
    const double number = numericValue(value);
    Matrix matrix = clip.matrix;
    switch (property) {
        case Property::x:
        case Property::y:
            (property == Property::x ? matrix.tx : matrix.ty) = static_cast<std::int16_t>(toUint16(number));
            applyMatrix(clip, matrix);
            return true;
        case Property::xScale:
        case Property::yScale:
        case Property::rotation: setPart(clip, property, number); return true;
        case Property::alpha: setClipAlpha(clip, value); return true;
        case Property::visible: clip.visible = toBoolean(value); return true;
        case Property::width:
        case Property::height: setSize(movie, target, clip, property, number); return true;
        case Property::name: setName(movie, clip, value); return false;
        default: return false;
    }
}

bool knows(double number) { return number >= 0 && number <= static_cast<double>(Property::name); }

void stepFrame(Movie& movie, const Target& target, bool forward) {
    const std::uint32_t current = currentFrameOf(movie, target);
    if (current == (forward ? frameCountOf(movie, target) : 1)) return;
    gotoFrame(movie, target, forward ? current + 1.0 : current - 1.0, AfterGoto::stop);
}

void gotoArgument(Movie& movie, const Target& target, const Value& value, AfterGoto after) {
    double frame = 0;
    if (value.is(ValueType::number)) frame = truncated(value.asNumber());
    if (value.is(ValueType::text)) frame = labelFrame(movie, target, value.asText().view()) + 1.0;
    gotoFrame(movie, target, frame, after);
}

}  // namespace

Value getClipProperty(Movie& movie, const Target& target, double number) {
    number = truncated(number);
    if (target.isGone() || !knows(number)) return {};
    const auto property = static_cast<Property>(static_cast<int>(number));
    ClipInstance* clip = target.clip();
    return clip ? clipProperty(movie, target, *clip, property) : rootProperty(movie, property);
}

void setClipProperty(Movie& movie, const Target& target, double number, const Value& value) {
    number = truncated(number);
    ClipInstance* clip = target.clip();
    if (!clip || !knows(number)) return;
    if (write(movie, target, *clip, static_cast<Property>(static_cast<int>(number)), value))
        movie.scripts.redraw = true;
}

Value getClipMember(Movie& movie, const Target& target, const Name& name) {
    if (!name || target.isGone()) return {};
    ClipInstance* clip = target.clip();
    if (name->known == KnownName::parent) return clip ? clipValue(movie, clipAround(*clip)) : Value();
    if (name->known == KnownName::target)
        return Value::text(movie.scripts.memory,
                           clip ? clipSlashPath(movie, target.anchor()) : makeText(movie.scripts.memory, "_level0"));
    if (const int number = propertyNumber(name->known); number >= 0) return getClipProperty(movie, target, number);
    const VariableList& variables = clip ? clip->variables : movie.scripts.variables;
    if (const Variable* variable = variables.find(name)) return variable->value.copy();
    ClipInstance* child = childClip(movie, clip, name.view());
    return child ? clipValue(movie, child) : Value();
}

void setClipMember(Movie& movie, const Target& target, const Name& name, Value value) {
    if (!name || target.isGone()) return;
    if (const int number = propertyNumber(name->known); number >= 0)
        return setClipProperty(movie, target, number, value);
    ClipInstance* clip = target.clip();
    storeVariable(movie, clip ? clip->variables : movie.scripts.variables, name, std::move(value));
}

Value callClipMethod(Movie& movie, const Target& target, std::string_view method, Arguments arguments) {
    if (target.isGone()) return {};
    if (method == "play") setStopped(movie, target, false);
    if (method == "stop") setStopped(movie, target, true);
    if (method == "nextFrame" || method == "prevFrame") stepFrame(movie, target, method == "nextFrame");
    if (method == "getBounds") return getBounds(movie, target, arguments);
    if (method == "hitTest") return hitTest(movie, target, arguments);
    if (method == "localToGlobal") moveCoordinates(movie, target, arguments, 1);
    if (method == "globalToLocal") moveCoordinates(movie, target, arguments, -1);
    if (target.isRoot() && (method == "getBytesLoaded" || method == "getBytesTotal"))
        return Value::number(movie.scripts.memory, 0);
    const bool goesToPlay = method == "gotoAndPlay";
    if ((goesToPlay || method == "gotoAndStop") && !arguments.empty())
        gotoArgument(movie, target, arguments[0], goesToPlay ? AfterGoto::play : AfterGoto::stop);
    return {};
}

bool targetOf(Movie& movie, const Value& value, Target& target) {
    if (value.is(ValueType::clip)) {
        target = Target(value.asAnchor());
        return true;
    }
    if (!value.is(ValueType::text)) return false;
    const std::string_view path = value.asText().view();
    if (path.empty()) {
        target = movie.scripts.target;
        return true;
    }
    if (path == "_root" || path == "/") {
        target = {};
        return true;
    }
    ClipInstance* clip = resolveTarget(movie, path);
    ClipAnchor* anchor = clip ? anchorOf(movie, *clip) : nullptr;
    if (anchor) target = Target(anchor);
    return anchor != nullptr;
}

}  // namespace qel
