// What the names in a movie source stand for, and the identifiers that content knows them by.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "author/source_document.h"

namespace qel::author {

struct SourceCharacter {
    enum class Kind : std::uint8_t {
        fill,
        gradient,
        line,
        shape,
        morph,
        sprite,
        button,
        commandButton,
        sound,
        textField,
        compressionTable,
    };
    Kind kind = Kind::fill;
    std::uint16_t id = 0;
    const SourceValue* value = nullptr;

    // What stands on display lists.
    bool isPlaceable() const {
        return kind == Kind::shape || kind == Kind::morph || kind == Kind::sprite || kind == Kind::button ||
               kind == Kind::commandButton || kind == Kind::textField;
    }
};

// The labels of a timeline. Functions that take a value throw SourceError for one that names nothing.
class FrameLabels {
  public:
    FrameLabels() = default;
    explicit FrameLabels(const SourceValue& frames);

    // A frame by its number or label: the first, or the last, of those that its step of the source lasts.
    std::uint16_t firstFrame(const SourceValue& value) const { return frame(value).first; }
    std::uint16_t lastFrame(const SourceValue& value) const { return frame(value).last; }
    std::size_t frameCount() const { return frameCount_; }

  private:
    struct Range {
        std::uint16_t first = 0, last = 0;
    };
    Range frame(const SourceValue& value) const;

    std::map<std::string, Range> labels_;
    std::size_t frameCount_ = 0;
};

// True for a step of a timeline that is a key frame: its "key" is true or a name.
bool isKeyFrame(const SourceValue& step);

class SourceNames {
  public:
    // Takes in what a source names: identifiers that it gives itself, then characters, then the movie's key frames.
    void declare(const SourceValue& root);

    // An identifier that nothing else has, above another one.
    std::uint16_t newId(const SourceValue& where, std::uint16_t above = 0);
    std::uint16_t dictionarySize() const;

    const SourceCharacter& character(const SourceValue& name) const;
    std::uint16_t characterOf(const SourceValue& name, SourceCharacter::Kind kind, const char* whatItIs) const;
    const SourceCharacter& placeable(const SourceValue& name) const;
    const SourceCharacter& characterCalled(const std::string& name, const SourceValue& where) const;

    // A key frame of the movie by its name, and by its frame number.
    std::uint16_t keyFrame(const SourceValue& name) const;
    std::uint16_t keyFrameAt(std::size_t frame) const { return keyFrameIds_.at(frame); }
    const FrameLabels& labels() const { return labels_; }

  private:
    void reserveIdentifier(const SourceValue& object);
    void reserveIdentifiers(const SourceValue& frames);
    void declareCharacter(const std::string& name, const SourceValue& value);
    void declareKeyFrames(const SourceValue& frames);
    std::uint16_t idFor(const SourceValue& object);

    std::map<std::string, SourceCharacter> characters_;
    std::map<std::string, std::uint16_t> keyFrames_;
    std::map<std::size_t, std::uint16_t> keyFrameIds_;
    FrameLabels labels_;
    std::set<std::uint16_t> taken_;  // out of turn: given by the source, or above another
    std::uint16_t nextId_ = 1;
};

// The identifiers of a list of names.
std::vector<std::uint16_t> characterList(const SourceValue& list, const SourceNames& names);

}  // namespace qel::author
