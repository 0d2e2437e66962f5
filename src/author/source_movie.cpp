#include "author/source_movie.h"

#include <algorithm>

#include "author/source_characters.h"
#include "author/source_commands.h"
#include "author/source_shapes.h"
#include "author/source_svg.h"
#include "author/source_tables.h"
#include "author/source_timeline.h"

namespace qel::author {
namespace {

constexpr std::size_t mostLabelBytes = 255;
constexpr std::size_t mostSpriteLabelBytes = 39;  // players keep no more of it

// The labels of a timeline.
std::vector<Label> labelsOf(const SourceValue& where, const std::vector<CompiledFrame>& frames, std::size_t mostBytes) {
    std::vector<Label> labels;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        if (!frames[i].label) continue;
        if (frames[i].label->size() > mostBytes)
            fail(where, "the label \"" + frames[i].label->substr(0, 20) + "...\" has more than " +
                            std::to_string(mostBytes) + " bytes");
        labels.push_back({static_cast<std::uint16_t>(i), *frames[i].label});
    }
    return labels;
}

// Frames that are shown even by a player that is late: by number or label, in any order.
std::vector<std::uint16_t> frameList(const SourceValue& list, const FrameLabels& labels) {
    std::vector<std::uint16_t> frames;
    for (const SourceValue& value : listOf(list)) frames.push_back(labels.firstFrame(value));
    std::ranges::sort(frames);
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

class MovieCompiler {
  public:
    explicit MovieCompiler(const ReadSourceFile& readFile) { build_.readFile = readFile; }

    MovieFile compile(const SourceValue& root) {
        allowOnly(root,
                  {"stage", "version", "dropFrames", "fitToScreen", "background", "frameDuration", "frameDurations",
                   "commands", "keyFrameList", "purgeOrder", "nameTable", "directory", "characters", "frames"});
        readStage(root);
        build_.names.declare(root);
        if (const SourceValue* characters = root.find("characters")) defineCharacters(*characters);
        const SourceValue& where = memberOf(root, "frames");
        const std::vector<CompiledFrame> frames = compileFrames(where, build_, nullptr);
        writeProperties(root, frames);
        writeFrames(root, frames);
        movie_.records = std::move(build_.records);
        writeTables(root);
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

    // Styles come first, because a shape looks its styles up when it is read.
    void defineCharacters(const SourceValue& characters) {
        for (const bool styles : {true, false}) {
            for (const auto& [name, value] : membersOf(characters)) {
                const SourceCharacter& character = build_.names.characterCalled(name, value);
                if (isStyle(character) == styles) define(character);
            }
        }
        // Morphs come last, because they change the styles of shapes.
        for (const auto& [name, value] : membersOf(characters)) {
            const SourceCharacter& character = build_.names.characterCalled(name, value);
            if (character.kind == SourceCharacter::Kind::morph) shapes_.defineMorph(character);
        }
        checkNesting(build_);
    }

    static bool isStyle(const SourceCharacter& character) {
        using Kind = SourceCharacter::Kind;
        return character.kind == Kind::fill || character.kind == Kind::gradient || character.kind == Kind::line;
    }

    void define(const SourceCharacter& character) {
        switch (character.kind) {
            case SourceCharacter::Kind::fill: shapes_.defineFill(character); break;
            case SourceCharacter::Kind::gradient: shapes_.defineGradient(character.id, *character.value); break;
            case SourceCharacter::Kind::line: shapes_.defineLine(character); break;
            case SourceCharacter::Kind::shape: shapes_.defineShape(character); break;
            case SourceCharacter::Kind::morph: break;  // behind everything else
            case SourceCharacter::Kind::sprite: defineSprite(character); break;
            case SourceCharacter::Kind::button: defineButton(build_, character); break;
            case SourceCharacter::Kind::commandButton: defineCommandButton(build_, character); break;
            case SourceCharacter::Kind::sound: defineSound(build_, character); break;
            case SourceCharacter::Kind::textField: defineTextField(build_, character); break;
            case SourceCharacter::Kind::compressionTable: defineCompressionTable(build_, character); break;
        }
    }

    void defineSprite(const SourceCharacter& character) {
        const SourceValue& value = *character.value;
        allowOnly(value, {"sprite", "keyFrameList", "identifier"});
        const SourceValue& frames = memberOf(value, "sprite");
        SpriteRecord sprite{.id = character.id, .labels = {}, .keyFrames = {}, .timeline = {}};
        const std::vector<CompiledFrame> compiled = compileFrames(frames, build_, &character);
        for (const CompiledFrame& each : compiled) {
            if (each.callable) {
                const Location inRecord = callableIn(each);
                const auto timelineAt = static_cast<std::uint32_t>(sprite.timeline.size());
                sprite.blocks.push_back({{timelineAt + inRecord.offset, inRecord.length}, sprite.frameCount});
            }
            if (each.cacheId) ++sprite.keyFrameCount;
            const Bytes bytes = frameRecord(frames, each, sprite.frameCount++);
            sprite.timeline.insert(sprite.timeline.end(), bytes.begin(), bytes.end());
        }
        sprite.labels = labelsOf(frames, compiled, mostSpriteLabelBytes);
        const FrameLabels labels(frames);
        if (const SourceValue* list = value.find("keyFrameList")) sprite.keyFrames = frameList(*list, labels);
        build_.records.push_back(written(value, [&] { return author::sprite(sprite); }));
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
        const SourceValue& where = memberOf(root, "frames");
        movie_.properties.frameCount(static_cast<std::uint16_t>(frames.size()));
        writeDurations(root, frames.size());
        if (const SourceValue* background = root.find("background"))
            movie_.properties.background(colourOf(*background));
        if (const SourceValue* list = root.find("commands")) {
            const Bytes commands = compileCommands(*list, build_, {});
            if (commands.size() > onePiece)
                fail(*list,
                     "too large for the format: these commands take " + std::to_string(commands.size()) + " bytes");
            movie_.properties.commands(commands);
        }
        const std::vector<Label> labels = labelsOf(where, frames, mostLabelBytes);
        if (!labels.empty()) movie_.properties.labels(labels);
        std::vector<Properties::KeyFrame> keyFrames;
        for (std::size_t i = 0; i < frames.size(); ++i)
            if (frames[i].cacheId) keyFrames.push_back({static_cast<std::uint16_t>(i), *frames[i].cacheId});
        if (!keyFrames.empty()) movie_.properties.keyFrameIndex(keyFrames);
        movie_.properties.dictionarySize(build_.names.dictionarySize());
        if (movie_.properties.record().size() > onePiece)
            fail(where,
                 "too many commands, labels and key frames: they must fit " + std::to_string(onePiece) + " bytes");
    }

    void writeFrames(const SourceValue& root, const std::vector<CompiledFrame>& frames) {
        const SourceValue& where = memberOf(root, "frames");
        if (const SourceValue* background = root.find("background"))
            build_.records.push_back(backgroundColour(colourOf(*background)));
        if (const SourceValue* list = root.find("keyFrameList"))
            build_.records.push_back(
                written(*list, [&] { return keyFrameList(frameList(*list, build_.names.labels())); }));
        if (const SourceValue* list = root.find("purgeOrder"))
            build_.records.push_back(written(*list, [&] { return purgeOrder(characterList(*list, build_.names)); }));
        for (std::size_t i = 0; i < frames.size(); ++i) {
            build_.records.insert(build_.records.end(), frames[i].before.begin(), frames[i].before.end());
            if (frames[i].callable)
                callables_.push_back({build_.records.size(), static_cast<std::uint16_t>(i), callableIn(frames[i])});
            build_.records.push_back(frameRecord(where, frames[i], i));
        }
    }

    void writeTables(const SourceValue& root) {
        if (const SourceValue* directory = root.find("directory")) movie_.scanDefinitions = !booleanOf(*directory);
        std::vector<Name> names;
        if (const SourceValue* table = root.find("nameTable"))
            for (const auto& [name, value] : membersOf(*table))
                names.push_back({build_.names.character(value).id, name});
        const SourceValue& where = root.find("nameTable") ? *root.find("nameTable") : root;
        written(where, [&] {
            addLeadingTables(movie_, {.directorySize = build_.names.dictionarySize(),
                                      .hasDirectory = !movie_.scanDefinitions,
                                      .callables = callables_,
                                      .names = names});
            return Bytes{};
        });
        for (const Bytes& table : movie_.leading)
            if (table[0] != static_cast<std::uint8_t>(RecordType::characterDirectory) && table.size() > onePiece)
                fail(where, "the names of the characters, and what scripts call, must fit " + std::to_string(onePiece) +
                                " bytes each");
    }

    // Players read such records in one piece; the header of the content is in front of the first.
    static constexpr std::size_t onePiece = 6144 - vis::headerSize;

    MovieFile movie_;
    SourceBuild build_;
    ShapeCompiler shapes_{build_};
    std::vector<CallableFrame> callables_;
};

}  // namespace

MovieFile buildMovie(std::string_view source, const ReadSourceFile& readFile, std::vector<std::string>* warnings) {
    SourceValue root = parseSource(source);
    std::vector<std::string> unread;
    expandPictures(root, readFile, warnings ? *warnings : unread);
    return MovieCompiler(readFile).compile(root);
}

MovieFile buildPictureMovie(std::string_view svg, const std::string& fileName, double scale,
                            std::vector<std::string>& warnings) {
    const auto readFile = [svg](const std::string&) { return std::optional(Bytes(svg.begin(), svg.end())); };
    return buildMovie(sourceShowing(svg, fileName, scale), readFile, &warnings);
}

}  // namespace qel::author
