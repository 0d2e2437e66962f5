#include "author/source_timeline.h"

#include <algorithm>

#include "author/frame_items.h"
#include "author/source_code.h"
#include "author/source_commands.h"
#include "author/source_placement.h"

namespace qel::author {
namespace {

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

constexpr std::uint16_t noInstanceNumber = 65535;

ClipHandler handlerOf(const SourceValue& value, const ReadSourceFile& readFile) {
    allowOnly(value, {"on", "code"});
    ClipHandler handler;
    const std::pair<const char*, bool*> events[] = {{"load", &handler.onLoad},
                                                    {"unload", &handler.onUnload},
                                                    {"every-frame", &handler.onFrame},
                                                    {"event4", &handler.fourth},
                                                    {"event5", &handler.fifth}};
    const SourceValue& on = memberOf(value, "on");
    const auto take = [&](const SourceValue& name) {
        const auto found = std::ranges::find_if(events, [&](const auto& event) { return textOf(name) == event.first; });
        if (found == std::end(events))
            fail(name, "\"" + name.text + "\" is no event; use load, unload, every-frame, event4 or event5");
        *found->second = true;
    };
    if (on.kind == SourceValue::Kind::list)
        for (const SourceValue& name : on.items) take(name);
    else
        take(on);
    handler.code = codeOf(memberOf(value, "code"), readFile);
    return handler;
}

// An instance, and what a key frame has to say of it.
struct Instance {
    std::string name;  // of the source
    const SourceCharacter* character = nullptr;
    std::optional<std::uint16_t> number;  // identity of a clip's placement, so that key frames find it again
    std::string clipName;                 // for scripts
    std::vector<ClipHandler> handlers;
    Placement placement;
    Matrix written;  // as the content has it
    std::optional<Tween> tween;
    std::optional<std::uint16_t> ratio;
    std::optional<ColourTransform> colour;
    std::optional<std::uint8_t> alpha;  // after the colour

    bool isClip() const { return character->kind == SourceCharacter::Kind::sprite; }
};

class TimelineCompiler {
  public:
    TimelineCompiler(SourceBuild& build, const SourceCharacter* sprite) : build_(build), sprite_(sprite) {}

    void compile(const SourceValue& step) {
        allowOnly(step,
                  {"place",      "move",      "tween",      "remove",           "ratio",      "colour",  "alpha",
                   "label",      "key",       "identifier", "background",       "purgeOrder", "release", "hold",
                   "startSound", "stopSound", "volume",     "purgeOrderUpdate", "commands",   "actions", "callable"});
        CompiledFrame frame;
        if (const SourceValue* label = step.find("label")) frame.label = textOf(*label);
        if (isKeyFrame(step)) frame.cacheId = cacheIdFor(step);
        addRecords(frame, step);
        advanceTweens();
        changeInstances(step);
        if (frame.cacheId) rebuild();
        addSounds(step);
        if (const SourceValue* update = step.find("purgeOrderUpdate")) updatePurgeOrder(*update);
        if (const SourceValue* list = step.find("commands")) addCommands(*list);
        addActions(frame, step);
        push(std::move(frame), step);
        hold(step);
    }

    // Numbers that the source gives to placements itself; others take what is left.
    void reserveNumbers(const SourceValue& frames) {
        for (const SourceValue& step : listOf(frames))
            if (const SourceValue* placed = step.find("place"))
                for (const auto& [name, value] : membersOf(*placed))
                    if (const SourceValue* number = value.find("number")) givenNumbers_.insert(numberFrom(*number));
    }

    std::vector<CompiledFrame> take() { return std::move(frames_); }

  private:
    void add(const Bytes& item) { items_.insert(items_.end(), item.begin(), item.end()); }

    std::uint16_t cacheIdFor(const SourceValue& step) {
        if (!sprite_) return build_.names.keyFrameAt(frames_.size());
        const SourceValue* given = step.find("identifier");
        return given ? static_cast<std::uint16_t>(integerOf(*given, 1, noCharacter - 1)) : build_.names.newId(step);
    }

    // What stands in front of the frame in the stream, where a sprite's timeline has nothing but frames.
    void addRecords(CompiledFrame& frame, const SourceValue& step) {
        const auto take = [&](const char* field) {
            const SourceValue* value = step.find(field);
            if (value && sprite_) fail(*value, "this belongs into the movie's own frames, not into a sprite's");
            return value;
        };
        if (const SourceValue* value = take("background")) frame.before.push_back(backgroundColour(colourOf(*value)));
        if (const SourceValue* value = take("purgeOrder"))
            frame.before.push_back(written(*value, [&] { return purgeOrder(characterList(*value, build_.names)); }));
        if (const SourceValue* value = take("release"))
            frame.before.push_back(
                written(*value, [&] { return releaseCharacters(characterList(*value, build_.names)); }));
    }

    void changeInstances(const SourceValue& step) {
        const auto each = [&](const char* field, auto change) {
            if (const SourceValue* values = step.find(field))
                for (const auto& [name, value] : membersOf(*values)) change(name, value);
        };
        if (const SourceValue* removed = step.find("remove")) remove(*removed);
        each("place", [&](const std::string& name, const SourceValue& value) { placeInstance(name, value); });
        each("move", [&](const std::string& name, const SourceValue& value) { moveInstance(name, value); });
        each("tween", [&](const std::string& name, const SourceValue& value) { beginTween(name, value); });
        each("ratio", [&](const std::string& name, const SourceValue& value) { setRatio(name, value); });
        each("colour", [&](const std::string& name, const SourceValue& value) { setColour(name, value); });
        each("alpha", [&](const std::string& name, const SourceValue& value) { setAlpha(name, value); });
    }

    void addSounds(const SourceValue& step) {
        const auto each = [&](const char* field, Bytes (*item)(std::uint16_t)) {
            const SourceValue* value = step.find(field);
            if (!value) return;
            const auto addOne = [&](const SourceValue& name) {
                add(item(build_.names.characterOf(name, SourceCharacter::Kind::sound, "sound")));
            };
            if (value->kind != SourceValue::Kind::list) return addOne(*value);
            for (const SourceValue& name : value->items) addOne(name);
        };
        if (const SourceValue* loudness = step.find("volume"))
            add(volume(static_cast<std::uint8_t>(integerOf(*loudness, 0, 255))));
        each("stopSound", author::stopSound);
        each("startSound", author::startSound);
    }

    void updatePurgeOrder(const SourceValue& update) {
        std::vector<PurgePosition> positions;
        for (const auto& [name, value] : membersOf(update))
            positions.push_back(
                {build_.names.characterCalled(name, value).id, static_cast<std::uint8_t>(integerOf(value, 1, 255))});
        add(written(update, [&] { return purgeOrderUpdate(positions); }));
    }

    void addCommands(const SourceValue& list) {
        CommandPlace place;
        if (!sprite_) {
            place.findInstance = [this](const std::string& name) -> std::optional<TargetPosition> {
                const auto found = find(name);
                if (found == instances_.end()) return std::nullopt;
                return TargetPosition{found->character->id, depthOf(*found)};
            };
        }
        const Bytes commandList = compileCommands(list, build_, place);
        add(written(list, [&] { return commands(commandList); }));
    }

    // Code comes last, so that it finds the frame as it stands.
    void addActions(CompiledFrame& frame, const SourceValue& step) {
        const std::size_t begin = items_.size();
        if (const SourceValue* code = step.find("actions"))
            for (const Bytes& each : codesOf(*code, build_.readFile)) add(actions(each));
        const SourceValue* callable = step.find("callable");
        if (!callable || !booleanOf(*callable)) return;
        if (items_.size() == begin) fail(*callable, "a frame that scripts call has \"actions\"");
        frame.callable = Location{static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(items_.size() - begin)};
    }

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
        const std::uint16_t id = instance.character->id;
        if (instance.number) add(instanceNumber(*instance.number));
        if (instance.clipName.empty() && instance.handlers.empty())
            add(place(id, depthOf(instance)));
        else
            add(placeClip({id, depthOf(instance), instance.clipName, instance.handlers}));
        instance.written = identityMatrix;
        // A clip is stepped when it is moved, so it is moved even to where it is.
        if (instance.isClip()) instance.written = {};
        writeMatrix(instance);
        if (instance.ratio) add(author::ratio(depthOf(instance), *instance.ratio));
        if (instance.colour) add(author::colour(depthOf(instance), *instance.colour));
        if (instance.alpha) add(author::alpha(depthOf(instance), *instance.alpha));
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
        allowOnly(value, {"character", "above", "below", "number", "name", "handlers", "x", "y", "scale", "scaleX",
                          "scaleY", "rotate", "matrix"});
        if (find(name) != instances_.end()) fail(value, "\"" + name + "\" is placed already");
        constexpr std::size_t mostInstances = 256;
        if (instances_.size() == mostInstances) fail(value, "a timeline holds at most 256 instances at a time");
        Instance instance;
        instance.name = name;
        instance.character = &placedIn(build_, sprite_, memberOf(value, "character"));
        identify(instance, value);
        readPlacement(value, instance.placement);
        const auto at = instances_.begin() + static_cast<std::ptrdiff_t>(positionFor(value));
        writePlacement(*instances_.insert(at, std::move(instance)));
    }

    static std::uint16_t numberFrom(const SourceValue& value) {
        return static_cast<std::uint16_t>(integerOf(value, 0, noInstanceNumber - 1));
    }

    // The name, the number and the code of a placement. Only clips need a number: key frames find them again by it.
    void identify(Instance& instance, const SourceValue& value) {
        constexpr std::size_t mostText = 255;
        const SourceValue* number = value.find("number");
        if (number) instance.number = numberFrom(*number);
        if (!number && instance.isClip()) {
            do {
                if (nextNumber_ == noInstanceNumber - 1) fail(value, "too many sprites are placed on this timeline");
                ++nextNumber_;
            } while (givenNumbers_.contains(nextNumber_));
            instance.number = nextNumber_;
        }
        const SourceValue *name = value.find("name"), *handlers = value.find("handlers");
        for (const SourceValue* field : {name, handlers})
            if (field && !instance.isClip()) fail(*field, "only sprites have names and handlers");
        if (name) instance.clipName = contentTextOf(*name, mostText);
        if (handlers)
            for (const SourceValue& handler : listOf(*handlers))
                instance.handlers.push_back(handlerOf(handler, build_.readFile));
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

    void setRatio(const std::string& name, const SourceValue& value) {
        Instance& instance = existing(name, value);
        instance.ratio = static_cast<std::uint16_t>(integerOf(value, 0, 65535));
        add(author::ratio(depthOf(instance), *instance.ratio));
    }

    // A colour transform says all of the colour, the alpha of before included.
    void setColour(const std::string& name, const SourceValue& value) {
        Instance& instance = existing(name, value);
        instance.colour = readColourTransform(value);
        instance.alpha.reset();
        add(author::colour(depthOf(instance), *instance.colour));
    }

    void setAlpha(const std::string& name, const SourceValue& value) {
        Instance& instance = existing(name, value);
        instance.alpha = static_cast<std::uint8_t>(integerOf(value, 0, 255));
        add(author::alpha(depthOf(instance), *instance.alpha));
    }

    SourceBuild& build_;
    const SourceCharacter* sprite_;    // whose timeline it is; null for the movie's own
    std::vector<Instance> instances_;  // in drawing order
    std::set<std::uint16_t> givenNumbers_;
    std::uint16_t nextNumber_ = 0;
    Bytes items_;
    std::vector<CompiledFrame> frames_;
};

}  // namespace

std::vector<CompiledFrame> compileFrames(const SourceValue& frames, SourceBuild& build, const SourceCharacter* sprite) {
    TimelineCompiler compiler(build, sprite);
    compiler.reserveNumbers(frames);
    for (const SourceValue& step : listOf(frames)) compiler.compile(step);
    std::vector<CompiledFrame> compiled = compiler.take();
    if (compiled.empty()) fail(frames, "a timeline has at least one frame");
    return compiled;
}

Bytes frameRecord(const SourceValue& where, const CompiledFrame& compiled, std::size_t number) {
    try {
        return compiled.cacheId ? keyFrame(*compiled.cacheId, static_cast<std::uint16_t>(number), compiled.items)
                                : frame(compiled.items);
    } catch (const std::length_error&) {
        fail(where, "frame " + std::to_string(number) + " has more items than a frame record holds");
    }
}

Location callableIn(const CompiledFrame& compiled) {
    constexpr std::uint32_t recordHeader = 3, cacheId = 2, frameNumber = 2;
    const std::uint32_t items = recordHeader + cacheId + (compiled.cacheId ? frameNumber : 0);
    return {items + compiled.callable->offset, compiled.callable->length};
}

}  // namespace qel::author
