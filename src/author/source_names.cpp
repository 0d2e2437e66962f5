#include "author/source_names.h"

#include <algorithm>
#include <optional>

#include "format/record_types.h"

namespace qel::author {
namespace {

constexpr std::size_t mostFrames = 65535;

std::uint16_t identifierOf(const SourceValue& value) {
    return static_cast<std::uint16_t>(integerOf(value, 1, noCharacter - 1));
}

// How many frames a step of a timeline lasts.
std::size_t lengthOf(const SourceValue& step) {
    membersOf(step);
    const SourceValue* hold = step.find("hold");
    return hold ? static_cast<std::size_t>(integerOf(*hold, 1, mostFrames)) : 1;
}

using Kind = SourceCharacter::Kind;

// The field that makes a character what it is.
constexpr std::pair<const char*, Kind> kindFields[] = {
    {"fill", Kind::fill},
    {"gradient", Kind::gradient},
    {"line", Kind::line},
    {"shape", Kind::shape},
    {"morph", Kind::morph},
    {"sprite", Kind::sprite},
    {"button", Kind::button},
    {"commandButton", Kind::commandButton},
    {"sound", Kind::sound},
    {"textField", Kind::textField},
    {"compressionTable", Kind::compressionTable},
};

}  // namespace

FrameLabels::FrameLabels(const SourceValue& frames) {
    for (const SourceValue& step : listOf(frames)) {
        const std::size_t length = lengthOf(step);
        // A timeline that grows too long is refused when it is compiled; until then its last frames are all alike.
        const auto first = static_cast<std::uint16_t>(std::min(frameCount_, mostFrames));
        const auto last = static_cast<std::uint16_t>(std::min(frameCount_ + length - 1, mostFrames));
        if (const SourceValue* label = step.find("label"))
            if (!labels_.insert({textOf(*label), {first, last}}).second)
                fail(*label, "the label \"" + label->text + "\" stands at a frame before");
        frameCount_ += length;
    }
}

FrameLabels::Range FrameLabels::frame(const SourceValue& value) const {
    if (value.kind == SourceValue::Kind::number) {
        const std::size_t most = std::min(frameCount_, mostFrames) - (frameCount_ > 0 ? 1 : 0);
        const auto number = static_cast<std::uint16_t>(integerOf(value, 0, static_cast<std::int64_t>(most)));
        return {number, number};
    }
    const auto found = labels_.find(textOf(value));
    if (found == labels_.end()) fail(value, "no frame has the label \"" + value.text + "\"");
    return found->second;
}

bool isKeyFrame(const SourceValue& step) {
    const SourceValue* key = step.find("key");
    if (!key) return false;
    if (key->kind == SourceValue::Kind::boolean) return key->boolean;
    if (key->kind != SourceValue::Kind::text) fail(*key, "true, or a name for the key frame, belongs here");
    return true;
}

void SourceNames::declare(const SourceValue& root) {
    const SourceValue* characters = root.find("characters");
    const SourceValue& frames = memberOf(root, "frames");
    if (characters) {
        for (const auto& [name, value] : membersOf(*characters)) {
            reserveIdentifier(value);
            if (const SourceValue* timeline = value.find("sprite")) reserveIdentifiers(*timeline);
        }
    }
    reserveIdentifiers(frames);
    if (characters)
        for (const auto& [name, value] : membersOf(*characters)) declareCharacter(name, value);
    labels_ = FrameLabels(frames);
    declareKeyFrames(frames);
}

void SourceNames::reserveIdentifier(const SourceValue& object) {
    membersOf(object);
    const SourceValue* identifier = object.find("identifier");
    if (identifier && !taken_.insert(identifierOf(*identifier)).second)
        fail(*identifier, "this identifier is given twice");
}

void SourceNames::reserveIdentifiers(const SourceValue& frames) {
    for (const SourceValue& step : listOf(frames)) {
        reserveIdentifier(step);
        if (const SourceValue* identifier = step.find("identifier"); identifier && !isKeyFrame(step))
            fail(*identifier, "only key frames have an identifier");
    }
}

std::uint16_t SourceNames::newId(const SourceValue& where, std::uint16_t above) {
    while (taken_.contains(nextId_)) ++nextId_;
    std::uint16_t id = std::max(nextId_, static_cast<std::uint16_t>(above + 1));
    while (taken_.contains(id)) ++id;
    if (id == noCharacter) fail(where, "the identifiers up to 65534 are used up");
    if (id == nextId_)
        ++nextId_;
    else
        taken_.insert(id);
    return id;
}

std::uint16_t SourceNames::idFor(const SourceValue& object) {
    const SourceValue* given = object.find("identifier");
    return given ? identifierOf(*given) : newId(object);
}

std::uint16_t SourceNames::dictionarySize() const {
    const int highest = taken_.empty() ? 0 : *taken_.rbegin();
    return static_cast<std::uint16_t>(std::max<int>(nextId_, highest + 1));
}

void SourceNames::declareCharacter(const std::string& name, const SourceValue& value) {
    if (name.starts_with('#')) fail(value, "a name does not begin with #, as colours do");
    std::optional<Kind> kind;
    std::string known;
    for (const auto& [field, itsKind] : kindFields) {
        known += (known.empty() ? "" : ", ") + std::string(field);
        if (!value.find(field)) continue;
        if (kind) fail(*value.find(field), "\"" + name + "\" can be only one thing");
        kind = itsKind;
    }
    if (!kind) fail(value, "\"" + name + "\" has none of " + known + ", svg");
    characters_[name] = {*kind, idFor(value), &value};
}

void SourceNames::declareKeyFrames(const SourceValue& frames) {
    std::size_t number = 0;
    for (const SourceValue& step : listOf(frames)) {
        const std::size_t at = number;
        number += lengthOf(step);
        if (!isKeyFrame(step)) continue;
        const SourceValue& key = *step.find("key");
        const std::uint16_t id = keyFrameIds_[at] = idFor(step);
        const SourceValue* name = key.kind == SourceValue::Kind::text ? &key : step.find("label");
        if (name && !keyFrames_.insert({textOf(*name), id}).second)
            fail(*name, "a key frame before is called \"" + name->text + "\"");
    }
}

const SourceCharacter& SourceNames::characterCalled(const std::string& name, const SourceValue& where) const {
    const auto found = characters_.find(name);
    if (found == characters_.end()) fail(where, "no character is called \"" + name + "\"");
    return found->second;
}

const SourceCharacter& SourceNames::character(const SourceValue& name) const {
    return characterCalled(textOf(name), name);
}

std::uint16_t SourceNames::characterOf(const SourceValue& name, SourceCharacter::Kind kind,
                                       const char* whatItIs) const {
    const SourceCharacter& found = character(name);
    if (found.kind != kind) fail(name, "\"" + name.text + "\" is no " + whatItIs);
    return found.id;
}

const SourceCharacter& SourceNames::placeable(const SourceValue& name) const {
    const SourceCharacter& found = character(name);
    if (!found.isPlaceable())
        fail(name, "\"" + name.text + "\" is not to be seen; only shapes, sprites, buttons and text fields are placed");
    return found;
}

std::uint16_t SourceNames::keyFrame(const SourceValue& name) const {
    const auto found = keyFrames_.find(textOf(name));
    if (found == keyFrames_.end()) fail(name, "no key frame is called \"" + name.text + "\"");
    return found->second;
}

std::vector<std::uint16_t> characterList(const SourceValue& list, const SourceNames& names) {
    std::vector<std::uint16_t> ids;
    for (const SourceValue& name : listOf(list)) ids.push_back(names.character(name).id);
    return ids;
}

}  // namespace qel::author
