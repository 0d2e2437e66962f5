#include "author/source_timeline.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "author/frame_items.h"
#include "format/integers.h"

namespace qel::author {
namespace {

// Where an instance stands, in the terms of the source.
struct Placement {
    double x = 0, y = 0;
    double scaleX = 1, scaleY = 1;
    double rotate = 0;             // degrees, clockwise
    std::optional<Matrix> matrix;  // given as it is
};

std::int32_t fixed(double value) { return static_cast<std::int32_t>(std::llround(value * fixedOne)); }

Matrix matrixOf(const Placement& placement) {
    if (placement.matrix) return *placement.matrix;
    const double angle = placement.rotate * std::numbers::pi / 180;
    const double cosine = std::cos(angle), sine = std::sin(angle);
    return {.a = fixed(placement.scaleX * cosine),
            .b = fixed(placement.scaleX * sine),
            .c = fixed(-placement.scaleY * sine),
            .d = fixed(placement.scaleY * cosine),
            .tx = static_cast<std::int16_t>(std::lround(placement.x)),
            .ty = static_cast<std::int16_t>(std::lround(placement.y))};
}

double numberBetween(const SourceValue& value, double least, double most) {
    const double number = numberOf(value);
    if (!(number >= least && number <= most))
        fail(value, "a number from " + std::to_string(std::int64_t(least)) + " to " +
                        std::to_string(std::int64_t(most)) + " belongs here");
    return number;
}

double boundedNumber(const SourceValue& value, double most) { return numberBetween(value, -most, most); }

constexpr double mostPixels = 32767, mostScale = 4000, mostDegrees = 1e6;

// Changes what the object names of a placement; true when it names anything.
bool readPlacement(const SourceValue& object, Placement& placement) {
    bool any = false;
    const auto take = [&](const char* name, double most, std::initializer_list<double*> fields) {
        const SourceValue* value = object.find(name);
        if (!value) return;
        for (double* field : fields) *field = boundedNumber(*value, most);
        placement.matrix.reset();
        any = true;
    };
    take("x", mostPixels, {&placement.x});
    take("y", mostPixels, {&placement.y});
    take("scale", mostScale, {&placement.scaleX, &placement.scaleY});
    take("scaleX", mostScale, {&placement.scaleX});
    take("scaleY", mostScale, {&placement.scaleY});
    take("rotate", mostDegrees, {&placement.rotate});
    if (const SourceValue* matrix = object.find("matrix")) {
        if (any) fail(*matrix, "a matrix says all there is; x, y, scale and rotate do not stand beside it");
        placement.matrix = readMatrix(*matrix);
        any = true;
    }
    return any;
}

// How a tween's time becomes its progress, both from 0 to 1.
enum class Ease : std::uint8_t { linear, in, out, inOut };

double eased(Ease ease, double t) {
    switch (ease) {
        case Ease::linear: return t;
        case Ease::in: return t * t;
        case Ease::out: return t * (2 - t);
        case Ease::inOut: return t < 0.5 ? 2 * t * t : 1 - 2 * (1 - t) * (1 - t);
    }
    return t;
}

Ease easeOf(const SourceValue& value) {
    const std::string& name = textOf(value);
    if (name == "linear") return Ease::linear;
    if (name == "in") return Ease::in;
    if (name == "out") return Ease::out;
    if (name == "inOut") return Ease::inOut;
    fail(value, "\"" + name + "\" is no easing; use linear, in, out or inOut");
}

struct Tween {
    Placement from, to;
    std::size_t frames = 0, passed = 0;
    Ease ease = Ease::linear;
};

Placement between(const Tween& tween) {
    const double t = eased(tween.ease, static_cast<double>(tween.passed) / static_cast<double>(tween.frames));
    const auto mix = [t](double from, double to) { return from + (to - from) * t; };
    return {.x = mix(tween.from.x, tween.to.x),
            .y = mix(tween.from.y, tween.to.y),
            .scaleX = mix(tween.from.scaleX, tween.to.scaleX),
            .scaleY = mix(tween.from.scaleY, tween.to.scaleY),
            .rotate = mix(tween.from.rotate, tween.to.rotate),
            .matrix = {}};
}

struct Instance {
    std::string name;
    PlacedCharacter character;
    std::uint16_t number = 0;  // identity of a clip's placement, so that key frames find it again
    Placement placement;
    Matrix written;  // as the content has it
    std::optional<Tween> tween;
    std::optional<std::uint8_t> alpha;
    std::optional<ColourTransform> colour;
};

ColourTransform colourTransformOf(const SourceValue& object) {
    allowOnly(object, {"redMultiplier", "greenMultiplier", "blueMultiplier", "alphaMultiplier", "redOffset",
                       "greenOffset", "blueOffset", "alphaOffset"});
    ColourTransform transform;
    const auto multiplier = [&](const char* name, std::uint16_t& field) {
        if (const SourceValue* value = object.find(name))
            field = static_cast<std::uint16_t>(std::lround(numberBetween(*value, 0, 127) * 256));
    };
    const auto offset = [&](const char* name, std::int16_t& field) {
        if (const SourceValue* value = object.find(name))
            field = static_cast<std::int16_t>(integerOf(*value, -255, 255));
    };
    multiplier("redMultiplier", transform.redMultiplier);
    multiplier("greenMultiplier", transform.greenMultiplier);
    multiplier("blueMultiplier", transform.blueMultiplier);
    multiplier("alphaMultiplier", transform.alphaMultiplier);
    offset("redOffset", transform.redOffset);
    offset("greenOffset", transform.greenOffset);
    offset("blueOffset", transform.blueOffset);
    offset("alphaOffset", transform.alphaOffset);
    return transform;
}

class TimelineCompiler {
  public:
    explicit TimelineCompiler(const FindCharacter& findCharacter) : findCharacter_(findCharacter) {}

    void compile(const SourceValue& step) {
        allowOnly(step, {"place", "move", "tween", "remove", "alpha", "colour", "label", "key", "background", "hold"});
        CompiledFrame frame;
        if (const SourceValue* label = step.find("label")) frame.label = textOf(*label);
        if (const SourceValue* background = step.find("background")) frame.background = colourOf(*background);
        if (const SourceValue* key = step.find("key")) frame.isKey = booleanOf(*key);
        advanceTweens();
        if (const SourceValue* removed = step.find("remove")) remove(*removed);
        if (const SourceValue* placed = step.find("place"))
            for (const auto& [name, value] : membersOf(*placed)) placeInstance(name, value);
        if (const SourceValue* moved = step.find("move"))
            for (const auto& [name, value] : membersOf(*moved)) moveInstance(name, value);
        if (const SourceValue* tweens = step.find("tween"))
            for (const auto& [name, value] : membersOf(*tweens)) beginTween(name, value);
        if (const SourceValue* alphas = step.find("alpha"))
            for (const auto& [name, value] : membersOf(*alphas)) setAlpha(name, value);
        if (const SourceValue* colours = step.find("colour"))
            for (const auto& [name, value] : membersOf(*colours)) setColour(name, value);
        if (frame.isKey) rebuild();
        push(std::move(frame), step);
        hold(step);
    }

    std::vector<CompiledFrame> take() { return std::move(frames_); }

  private:
    void add(const Bytes& item) { items_.insert(items_.end(), item.begin(), item.end()); }

    std::uint8_t depthOf(const Instance& instance) const {
        return static_cast<std::uint8_t>(&instance - instances_.data());
    }

    std::vector<Instance>::iterator find(const std::string& name) {
        return std::ranges::find(instances_, name, &Instance::name);
    }

    Instance& existing(const std::string& name, const SourceValue& value) {
        const auto found = find(name);
        if (found == instances_.end()) fail(value, "nothing called \"" + name + "\" is placed here");
        return *found;
    }

    // A frame that stays: only tweens go on in it.
    void hold(const SourceValue& step) {
        const SourceValue* value = step.find("hold");
        if (!value) return;
        constexpr std::int64_t mostFrames = 65535;
        for (std::int64_t left = integerOf(*value, 1, mostFrames); left > 1; --left) {
            advanceTweens();
            push({}, step);
        }
    }

    void writeMatrix(Instance& instance) {
        const Matrix matrix = matrixOf(instance.placement);
        if (matrix == instance.written) return;
        instance.written = matrix;
        add(author::move(depthOf(instance), matrix));
    }

    void advanceTweens() {
        for (Instance& instance : instances_) {
            if (!instance.tween) continue;
            Tween& tween = *instance.tween;
            ++tween.passed;
            instance.placement = tween.passed == tween.frames ? tween.to : between(tween);
            writeMatrix(instance);
            if (tween.passed == tween.frames) instance.tween.reset();
        }
    }

    void push(CompiledFrame frame, const SourceValue& step) {
        constexpr std::size_t mostFrames = 65535;
        if (frames_.size() == mostFrames) fail(step, "a timeline holds at most 65535 frames");
        frame.items = std::move(items_);
        items_.clear();
        frames_.push_back(std::move(frame));
    }

    // A key frame builds the list from nothing: instead of what changed it says how everything stands.
    void rebuild() {
        items_.clear();
        for (Instance& instance : instances_) writePlacement(instance);
    }

    void writePlacement(Instance& instance) {
        if (instance.character.isSprite) add(instanceNumber(instance.number));
        add(place(instance.character.id, depthOf(instance)));
        instance.written = identityMatrix;
        // A clip is stepped when it is moved, so it is moved even to where it is.
        if (instance.character.isSprite) instance.written = {};
        writeMatrix(instance);
        if (instance.alpha) add(author::alpha(depthOf(instance), *instance.alpha));
        if (instance.colour) add(author::colour(depthOf(instance), *instance.colour));
    }

    void remove(const SourceValue& names) {
        for (const SourceValue& name : listOf(names)) {
            const Instance& instance = existing(textOf(name), name);
            add(removeAt(depthOf(instance)));
            instances_.erase(instances_.begin() + depthOf(instance));
        }
    }

    // Where a new instance goes in the drawing order: on top, or beside one that is there.
    std::size_t positionFor(const SourceValue& value) {
        const SourceValue* above = value.find("above");
        const SourceValue* below = value.find("below");
        if (above && below) fail(*below, "\"above\" and \"below\" do not go together");
        if (above) return depthOf(existing(textOf(*above), *above)) + 1u;
        if (below) return depthOf(existing(textOf(*below), *below));
        return instances_.size();
    }

    void placeInstance(const std::string& name, const SourceValue& value) {
        allowOnly(value, {"character", "above", "below", "x", "y", "scale", "scaleX", "scaleY", "rotate", "matrix"});
        if (find(name) != instances_.end()) fail(value, "\"" + name + "\" is placed already");
        constexpr std::size_t mostInstances = 256;
        if (instances_.size() == mostInstances) fail(value, "a timeline holds at most 256 instances at a time");
        Instance instance;
        instance.name = name;
        instance.character = findCharacter_(memberOf(value, "character"));
        if (instance.character.isSprite) {
            constexpr std::uint16_t mostNumbers = 65534;
            if (nextNumber_ == mostNumbers) fail(value, "too many sprites are placed on this timeline");
            instance.number = ++nextNumber_;
        }
        readPlacement(value, instance.placement);
        const auto at = instances_.begin() + static_cast<std::ptrdiff_t>(positionFor(value));
        writePlacement(*instances_.insert(at, std::move(instance)));
    }

    void moveInstance(const std::string& name, const SourceValue& value) {
        allowOnly(value, {"x", "y", "scale", "scaleX", "scaleY", "rotate", "matrix"});
        Instance& instance = existing(name, value);
        if (!readPlacement(value, instance.placement)) fail(value, "this says nothing of where to");
        instance.tween.reset();
        writeMatrix(instance);
    }

    void beginTween(const std::string& name, const SourceValue& value) {
        allowOnly(value, {"frames", "ease", "x", "y", "scale", "scaleX", "scaleY", "rotate"});
        Instance& instance = existing(name, value);
        if (instance.placement.matrix) fail(value, "\"" + name + "\" was placed by a matrix, which cannot be tweened");
        Tween tween;
        tween.from = tween.to = instance.placement;
        if (!readPlacement(value, tween.to)) fail(value, "this says nothing of where to");
        constexpr std::int64_t mostFrames = 65535;
        tween.frames = static_cast<std::size_t>(integerOf(memberOf(value, "frames"), 1, mostFrames));
        if (const SourceValue* ease = value.find("ease")) tween.ease = easeOf(*ease);
        instance.tween = tween;
    }

    void setAlpha(const std::string& name, const SourceValue& value) {
        Instance& instance = existing(name, value);
        instance.alpha = static_cast<std::uint8_t>(integerOf(value, 0, 255));
        add(author::alpha(depthOf(instance), *instance.alpha));
    }

    void setColour(const std::string& name, const SourceValue& value) {
        Instance& instance = existing(name, value);
        instance.colour = colourTransformOf(value);
        add(author::colour(depthOf(instance), *instance.colour));
    }

    const FindCharacter& findCharacter_;
    std::vector<Instance> instances_;  // in drawing order
    std::uint16_t nextNumber_ = 0;
    Bytes items_;
    std::vector<CompiledFrame> frames_;
};

}  // namespace

Matrix readMatrix(const SourceValue& value) {
    const auto& items = listOf(value);
    if (items.size() != 6) fail(value, "a matrix has six numbers: a, b, c, d, tx, ty");
    return {.a = fixed(boundedNumber(items[0], mostScale)),
            .b = fixed(boundedNumber(items[1], mostScale)),
            .c = fixed(boundedNumber(items[2], mostScale)),
            .d = fixed(boundedNumber(items[3], mostScale)),
            .tx = static_cast<std::int16_t>(std::lround(boundedNumber(items[4], mostPixels))),
            .ty = static_cast<std::int16_t>(std::lround(boundedNumber(items[5], mostPixels)))};
}

std::vector<CompiledFrame> compileFrames(const SourceValue& frames, const FindCharacter& findCharacter) {
    TimelineCompiler compiler(findCharacter);
    for (const SourceValue& step : listOf(frames)) compiler.compile(step);
    std::vector<CompiledFrame> compiled = compiler.take();
    if (compiled.empty()) fail(frames, "a timeline has at least one frame");
    return compiled;
}

}  // namespace qel::author
