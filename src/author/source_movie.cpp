#include "author/source_movie.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <set>

#include "author/source_path.h"
#include "author/source_timeline.h"

namespace qel::author {
namespace {

// What a name of the source stands for.
struct SourceCharacter {
    enum class Kind : std::uint8_t { fill, gradient, line, shape, sprite };
    Kind kind = Kind::fill;
    std::uint16_t id = 0;
    const SourceValue* value = nullptr;
};

class MovieCompiler {
  public:
    MovieFile compile(const SourceValue& root) {
        allowOnly(root, {"stage", "version", "dropFrames", "fitToScreen", "background", "frameDuration",
                         "frameDurations", "characters", "frames"});
        readStage(root);
        if (const SourceValue* characters = root.find("characters")) {
            for (const auto& [name, value] : membersOf(*characters)) declare(name, value);
            // Styles come first, because a shape looks its styles up when it is read.
            for (const bool styles : {true, false})
                for (const auto& [name, value] : membersOf(*characters))
                    if (isStyle(characters_.at(name)) == styles) define(characters_.at(name));
            checkNesting();
        }
        std::vector<CompiledFrame> frames = compileTimeline(memberOf(root, "frames"), nullptr);
        writeProperties(root, frames);
        writeFrames(root, frames);
        return std::move(movie_);
    }

  private:
    void readStage(const SourceValue& root) {
        constexpr std::int64_t mostPixels = 4096;
        const auto& size = listOf(memberOf(root, "stage"));
        if (size.size() != 2) fail(memberOf(root, "stage"), "a stage is [width, height] in pixels");
        movie_.width = static_cast<std::uint16_t>(integerOf(size[0], 1, mostPixels));
        movie_.height = static_cast<std::uint16_t>(integerOf(size[1], 1, mostPixels));
        if (const SourceValue* version = root.find("version"))
            movie_.version = static_cast<std::uint8_t>(integerOf(*version, 16, 255));
        if (const SourceValue* drop = root.find("dropFrames")) movie_.dropFrames = booleanOf(*drop);
        if (const SourceValue* fit = root.find("fitToScreen")) movie_.fitToScreen = booleanOf(*fit);
    }

    std::uint16_t newId(const SourceValue& value) {
        if (nextId_ == noCharacter) fail(value, "more than 65534 characters");
        return nextId_++;
    }

    void declare(const std::string& name, const SourceValue& value) {
        using Kind = SourceCharacter::Kind;
        if (name.starts_with('#')) fail(value, "a name does not begin with #, as colours do");
        constexpr std::pair<const char*, Kind> kinds[] = {{"fill", Kind::fill},
                                                          {"gradient", Kind::gradient},
                                                          {"line", Kind::line},
                                                          {"shape", Kind::shape},
                                                          {"sprite", Kind::sprite}};
        std::optional<Kind> kind;
        for (const auto& [field, itsKind] : kinds) {
            if (membersOf(value).empty() || !value.find(field)) continue;
            if (kind) fail(*value.find(field), "\"" + name + "\" can be only one thing");
            kind = itsKind;
        }
        if (!kind) fail(value, "\"" + name + "\" has none of fill, gradient, line, shape, sprite");
        characters_[name] = {*kind, newId(value), &value};
    }

    static bool isStyle(const SourceCharacter& character) {
        return character.kind != SourceCharacter::Kind::shape && character.kind != SourceCharacter::Kind::sprite;
    }

    void define(const SourceCharacter& character) {
        const SourceValue& value = *character.value;
        switch (character.kind) {
            case SourceCharacter::Kind::fill: {
                allowOnly(value, {"fill"});
                const SourcePaint paint = paintOf(memberOf(value, "fill"));
                movie_.records.push_back(solidFill(character.id, {paint.colour, paint.alpha}));
                break;
            }
            case SourceCharacter::Kind::gradient: defineGradient(character.id, value); break;
            case SourceCharacter::Kind::line: defineLine(character); break;
            case SourceCharacter::Kind::shape: defineShape(character); break;
            case SourceCharacter::Kind::sprite: defineSprite(character); break;
        }
    }

    void defineGradient(std::uint16_t id, const SourceValue& value) {
        allowOnly(value, {"gradient", "matrix", "stops"});
        const std::string& type = textOf(memberOf(value, "gradient"));
        if (type != "linear" && type != "radial")
            fail(memberOf(value, "gradient"), "\"" + type + "\" is no gradient; use linear or radial");
        std::vector<GradientStop> stops;
        for (const SourceValue& stop : listOf(memberOf(value, "stops"))) {
            const auto& parts = listOf(stop);
            if (parts.size() != 2) fail(stop, "a stop is [ratio, colour]");
            const SourcePaint paint = paintOf(parts[1]);
            const std::int64_t least = stops.empty() ? 0 : stops.back().ratio;  // ratios ascend
            stops.push_back({static_cast<std::uint8_t>(integerOf(parts[0], least, 255)), paint.colour, paint.alpha});
        }
        if (stops.empty()) fail(memberOf(value, "stops"), "a gradient has at least one stop");
        if (stops.size() > 255) fail(memberOf(value, "stops"), "a gradient has at most 255 stops");
        Matrix matrix = identityMatrix;
        if (const SourceValue* given = value.find("matrix")) matrix = readMatrix(*given);
        const GradientType kind = type == "linear" ? GradientType::linear : GradientType::radial;
        movie_.records.push_back(gradientFill(id, kind, matrix, stops));
    }

    void defineLine(const SourceCharacter& character) {
        const SourceValue& value = *character.value;
        allowOnly(value, {"line", "width"});
        const SourcePaint paint = paintOf(memberOf(value, "line"));
        const SourceValue* width = value.find("width");
        const auto pixels = static_cast<unsigned>(width ? integerOf(*width, 0, 63) : 1);
        movie_.records.push_back(lineStyle(character.id, {paint.colour, paint.alpha}, pixels));
    }

    const SourceCharacter& named(const SourceValue& name) const {
        const auto found = characters_.find(textOf(name));
        if (found == characters_.end()) fail(name, "no character is called \"" + name.text + "\"");
        return found->second;
    }

    // A fill whose identifier is above that of the path before: of overlapping fills of one shape the higher identifier
    // is drawn, and what is listed later belongs on top. A style that lies below gets a copy.
    std::uint16_t fillAbove(std::uint16_t before, const SourceValue& value, ShapeRecord& shape) {
        const bool isColour = textOf(value).starts_with('#');
        const SourceCharacter* style = isColour ? nullptr : &named(value);
        const bool isGradient = style && style->kind == SourceCharacter::Kind::gradient;
        if (style && style->kind != SourceCharacter::Kind::fill && !isGradient)
            fail(value, "\"" + value.text + "\" is no fill");
        if (isGradient) {
            std::uint16_t id = style->id;
            if (id <= before) defineGradient(id = newId(value), *style->value);
            shape.gradientFills.push_back(id);
            return id;
        }
        if (style && style->id > before) return style->id;
        const SourcePaint paint = paintOf(style ? memberOf(*style->value, "fill") : value);
        for (const auto& [existing, itsPaint] : inlineFills_)
            if (existing > before && itsPaint == paint) return existing;
        const std::uint16_t id = newId(value);
        movie_.records.push_back(solidFill(id, {paint.colour, paint.alpha}));
        inlineFills_.push_back({id, paint});
        return id;
    }

    std::uint16_t lineFor(const SourceValue& value) const {
        const SourceCharacter& style = named(value);
        if (style.kind != SourceCharacter::Kind::line) fail(value, "\"" + value.text + "\" is no line");
        return style.id;
    }

    void defineShape(const SourceCharacter& character) {
        allowOnly(*character.value, {"shape"});
        constexpr std::int16_t far = std::numeric_limits<std::int16_t>::max(),
                               near = std::numeric_limits<std::int16_t>::min();
        ShapeRecord shape{.id = character.id,
                          .bounds = {far, far, near, near},
                          .outline = {},
                          .hasFill = false,
                          .bitmapFills = {},
                          .gradientFills = {}};
        std::uint16_t fillBefore = 0;
        for (const SourceValue& path : listOf(memberOf(*character.value, "shape"))) {
            allowOnly(path, {"path", "fill", "line"});
            const SourceValue& text = memberOf(path, "path");
            std::uint16_t fill = noCharacter, line = noCharacter;
            if (const SourceValue* value = path.find("fill")) {
                fill = fillBefore = fillAbove(fillBefore, *value, shape);
                shape.hasFill = true;
            }
            if (const SourceValue* value = path.find("line")) line = lineFor(*value);
            if (fill == noCharacter && line == noCharacter) fail(path, "a path has a fill or a line");
            try {
                drawPath(shape.outline, parsePath(textOf(text)), line, fill, shape.bounds);
            } catch (const PathError& error) {
                fail(text, error.what());
            }
        }
        if (shape.bounds.xMin > shape.bounds.xMax) shape.bounds = {};
        addRecord(*character.value, [&] { return author::shape(shape); });
    }

    // `parent` is the sprite whose timeline it is, null for the movie's own.
    std::vector<CompiledFrame> compileTimeline(const SourceValue& frames, const SourceCharacter* parent) {
        return compileFrames(frames, [this, parent](const SourceValue& name) {
            const SourceCharacter& character = named(name);
            const bool isSprite = character.kind == SourceCharacter::Kind::sprite;
            if (!isSprite && character.kind != SourceCharacter::Kind::shape)
                fail(name, "\"" + name.text + "\" is a style; only shapes and sprites are placed");
            if (isSprite && parent) nested_.insert({parent, &character});
            return PlacedCharacter{character.id, isSprite};
        });
    }

    // Players do not go deeper than this, and a sprite inside itself would have no end.
    void checkNesting() const {
        constexpr int deepest = 64;
        std::map<const SourceCharacter*, int> depths;  // of the sprites below
        for (bool changed = true; changed;) {
            changed = false;
            for (const auto& [parent, child] : nested_) {
                const int depth = depths[child] + 1;
                if (depth <= depths[parent]) continue;
                if (depth == deepest)
                    fail(*parent->value, "sprites stand in one another 64 deep here; does one hold itself?");
                depths[parent] = depth;
                changed = true;
            }
        }
    }

    Bytes frameRecord(const SourceValue& where, const CompiledFrame& compiled, std::size_t number) {
        Bytes bytes;
        const std::uint16_t cacheId = compiled.isKey ? newId(where) : noCharacter;
        try {
            bytes = compiled.isKey ? keyFrame(cacheId, static_cast<std::uint16_t>(number), compiled.items)
                                   : frame(compiled.items);
        } catch (const std::length_error&) {
            fail(where, "frame " + std::to_string(number) + " has more items than a frame record holds");
        }
        if (compiled.isKey) keyFrames_.push_back({static_cast<std::uint16_t>(number), cacheId});
        return bytes;
    }

    void defineSprite(const SourceCharacter& character) {
        const SourceValue& value = *character.value;
        allowOnly(value, {"sprite"});
        const SourceValue& frames = memberOf(value, "sprite");
        SpriteRecord sprite{.id = character.id, .labels = {}, .keyFrames = {}, .timeline = {}};
        keyFrames_.clear();
        for (const CompiledFrame& compiled : compileTimeline(frames, &character)) {
            if (compiled.background) fail(frames, "only the movie's own frames change the background");
            if (compiled.label) sprite.labels.push_back({sprite.frameCount, *compiled.label});
            const Bytes bytes = frameRecord(frames, compiled, sprite.frameCount++);
            sprite.timeline.insert(sprite.timeline.end(), bytes.begin(), bytes.end());
        }
        sprite.keyFrameCount = static_cast<std::uint16_t>(keyFrames_.size());
        keyFrames_.clear();
        addRecord(value, [&] { return author::sprite(sprite); });
    }

    // Whatever a record cannot hold is the source's fault.
    template <class Write>
    void addRecord(const SourceValue& value, Write write) {
        try {
            movie_.records.push_back(write());
        } catch (const std::logic_error& error) {
            fail(value, std::string("too large for the format: ") + error.what());
        }
    }

    void writeDurations(const SourceValue& root, std::size_t frameCount) {
        constexpr std::int64_t mostMs = 65535;
        const SourceValue* each = root.find("frameDurations");
        const SourceValue* all = root.find("frameDuration");
        if (each && all) fail(*each, "\"frameDuration\" and \"frameDurations\" do not go together");
        if (!each) {
            movie_.properties.frameDuration(static_cast<std::uint16_t>(all ? integerOf(*all, 1, mostMs) : 50));
            return;
        }
        constexpr std::size_t mostDurations = 126;
        std::vector<std::uint16_t> durations;
        for (const SourceValue& value : listOf(*each))
            durations.push_back(static_cast<std::uint16_t>(integerOf(value, 0, mostMs)));
        if (durations.size() + 1 != frameCount)
            fail(*each, std::to_string(frameCount - 1) +
                            " durations belong here: one for each frame but the last, which has none");
        if (durations.size() > mostDurations)
            fail(*each, "at most 126 frames can have durations of their own; use \"frameDuration\"");
        movie_.properties.frameDurations(durations);
    }

    void writeProperties(const SourceValue& root, const std::vector<CompiledFrame>& frames) {
        movie_.properties.frameCount(static_cast<std::uint16_t>(frames.size()));
        writeDurations(root, frames.size());
        if (const SourceValue* background = root.find("background"))
            movie_.properties.background(colourOf(*background));
        std::vector<Label> labels;
        for (std::size_t i = 0; i < frames.size(); ++i)
            if (frames[i].label) labels.push_back({static_cast<std::uint16_t>(i), *frames[i].label});
        for (const Label& label : labels)
            if (label.name.size() > 255)
                fail(root, "the label \"" + label.name.substr(0, 20) + "...\" has more than 255 bytes");
        if (!labels.empty()) movie_.properties.labels(labels);
    }

    void writeFrames(const SourceValue& root, const std::vector<CompiledFrame>& frames) {
        const SourceValue& where = memberOf(root, "frames");
        if (const SourceValue* background = root.find("background"))
            movie_.records.push_back(backgroundColour(colourOf(*background)));
        for (std::size_t i = 0; i < frames.size(); ++i) {
            if (frames[i].background) movie_.records.push_back(backgroundColour(*frames[i].background));
            movie_.records.push_back(frameRecord(where, frames[i], i));
        }
        if (!keyFrames_.empty()) movie_.properties.keyFrameIndex(keyFrames_);
        movie_.properties.dictionarySize(nextId_);
        // The player reads this record in one piece.
        constexpr std::size_t oneChunk = 6144 - vis::headerSize;
        if (movie_.properties.record().size() > oneChunk)
            fail(where, "too many labels and key frames: they must fit 6115 bytes");
    }

    MovieFile movie_;
    std::map<std::string, SourceCharacter> characters_;
    std::vector<std::pair<std::uint16_t, SourcePaint>> inlineFills_;
    std::vector<Properties::KeyFrame> keyFrames_;  // of the timeline that is being written
    std::set<std::pair<const SourceCharacter*, const SourceCharacter*>> nested_;  // sprite, sprite on its timeline
    std::uint16_t nextId_ = 1;
};

}  // namespace

MovieFile buildMovie(std::string_view source) {
    const SourceValue root = parseSource(source);
    return MovieCompiler().compile(root);
}

}  // namespace qel::author
