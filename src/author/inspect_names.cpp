#include "author/inspect_names.h"

#include <algorithm>
#include <iterator>

#include "format/colour_formats.h"
#include "format/commands.h"
#include "format/frame_items.h"
#include "format/key_codes.h"
#include "format/path_records.h"
#include "format/record_types.h"
#include "format/saf_records.h"

namespace qel::author::inspector {
namespace {

template <class Number>
struct Name {
    Number number;
    const char* name;
};

constexpr Name<RecordType> recordNames[] = {
    {RecordType::movieProperties, "movieProperties"},
    {RecordType::characterDirectory, "characterDirectory"},
    {RecordType::keyFrameList, "keyFrameList"},
    {RecordType::purgeOrder, "purgeOrder"},
    {RecordType::releaseCharacters, "releaseCharacters"},
    {RecordType::shape, "shape"},
    {RecordType::compressionTable, "compressionTable"},
    {RecordType::bitmap, "bitmap"},
    {RecordType::frame, "frame"},
    {RecordType::textField, "textField"},
    {RecordType::nameTable, "nameTable"},
    {RecordType::blockTable, "blockTable"},
    {RecordType::alphaBitmap, "alphaBitmap"},
    {RecordType::sound, "sound"},
    {RecordType::button, "button"},
    {RecordType::sprite, "sprite"},
    {RecordType::solidFill, "solidFill"},
    {RecordType::gradientFill, "gradientFill"},
    {RecordType::bitmapFill, "bitmapFill"},
    {RecordType::lineStyle, "lineStyle"},
    {RecordType::morphShape, "morphShape"},
    {RecordType::backgroundColour, "backgroundColour"},
    {RecordType::commandButton, "commandButton"},
    {RecordType::end, "end"},
};

constexpr Name<PropertyType> propertyNames[] = {
    {PropertyType::commands, "commands"},
    {PropertyType::keyFrameIndex, "keyFrameIndex"},
    {PropertyType::frameLabels, "frameLabels"},
    {PropertyType::reserved52, "reserved"},
    {PropertyType::frameCount, "frameCount"},
    {PropertyType::background, "background"},
    {PropertyType::frameDuration, "frameDuration"},
    {PropertyType::reserved56, "reserved"},
    {PropertyType::contentLength, "contentLength"},
    {PropertyType::blob, "blob"},
    {PropertyType::reserved65, "reserved"},
    {PropertyType::stageRectangle, "stageRectangle"},
    {PropertyType::dictionarySize, "dictionarySize"},
};

constexpr Name<FrameItemType> frameItemNames[] = {
    {FrameItemType::place, "place"},
    {FrameItemType::remove, "remove"},
    {FrameItemType::ratio, "ratio"},
    {FrameItemType::colour, "colour"},
    {FrameItemType::move, "move"},
    {FrameItemType::alpha, "alpha"},
    {FrameItemType::startSound, "startSound"},
    {FrameItemType::stopSound, "stopSound"},
    {FrameItemType::volume, "volume"},
    {FrameItemType::commands, "commands"},
    {FrameItemType::purgeOrderUpdate, "purgeOrderUpdate"},
    {FrameItemType::instanceNumber, "instanceNumber"},
    {FrameItemType::placeClip, "placeClip"},
    {FrameItemType::actions, "actions"},
};

constexpr Name<CommandNumber> commandNames[] = {
    {CommandNumber::gotoKeyFrame, "gotoKeyFrame"},
    {CommandNumber::play, "play"},
    {CommandNumber::gotoFirstKeyFrame, "gotoFirstKeyFrame"},
    {CommandNumber::stop, "stop"},
    {CommandNumber::requestStop, "requestStop"},
    {CommandNumber::soundOff, "soundOff"},
    {CommandNumber::soundOn, "soundOn"},
    {CommandNumber::startSound, "startSound"},
    {CommandNumber::stopSound, "stopSound"},
    {CommandNumber::frameLoop, "frameLoop"},
    {CommandNumber::openUrl, "openUrl"},
    {CommandNumber::vibrate, "vibrate"},
    {CommandNumber::scrollTo, "scrollTo"},
    {CommandNumber::scrollBy, "scrollBy"},
    {CommandNumber::resetView, "resetView"},
    {CommandNumber::zoom, "zoom"},
    {CommandNumber::focusNext, "focusNext"},
    {CommandNumber::focusPrevious, "focusPrevious"},
    {CommandNumber::selectTarget, "selectTarget"},
    {CommandNumber::placeTarget, "placeTarget"},
    {CommandNumber::removeTarget, "removeTarget"},
    {CommandNumber::ratio, "ratio"},
    {CommandNumber::colourTransform, "colourTransform"},
    {CommandNumber::setMatrix, "setMatrix"},
    {CommandNumber::moveBy, "moveBy"},
    {CommandNumber::alpha, "alpha"},
    {CommandNumber::fade, "fade"},
    {CommandNumber::callNumber, "callNumber"},
};

constexpr Name<PathRecordKind> pathRecordNames[] = {
    {PathRecordKind::styleChange, "styleChange"}, {PathRecordKind::lineTo, "lineTo"},
    {PathRecordKind::lineBy, "lineBy"},           {PathRecordKind::curveBy, "curveBy"},
    {PathRecordKind::moveTo, "moveTo"},           {PathRecordKind::moveBy, "moveBy"},
};

constexpr Name<CharacterKind> characterKindNames[] = {
    {CharacterKind::solidFill, "solidFill"},
    {CharacterKind::gradientFill, "gradientFill"},
    {CharacterKind::bitmapFill, "bitmapFill"},
    {CharacterKind::lineStyle, "lineStyle"},
    {CharacterKind::shape, "shape"},
    {CharacterKind::morphShape, "morphShape"},
    {CharacterKind::bitmap, "bitmap"},
    {CharacterKind::frameCache, "frameCache"},
    {CharacterKind::sound, "sound"},
    {CharacterKind::compressionTable, "compressionTable"},
    {CharacterKind::commandButton, "commandButton"},
    {CharacterKind::button, "button"},
    {CharacterKind::sprite, "sprite"},
    {CharacterKind::editText, "editText"},
    {CharacterKind::alphaBitmap, "alphaBitmap"},
};

constexpr Name<ColourFormat> colourFormatNames[] = {
    {ColourFormat::rgb332, "rgb332"}, {ColourFormat::xrgb4444, "xrgb4444"}, {ColourFormat::rgbx4444, "rgbx4444"},
    {ColourFormat::rgb565, "rgb565"}, {ColourFormat::rgb888, "rgb888"},
};

constexpr Name<SafRecordType> safRecordNames[] = {
    {SafRecordType::object, "object"},
    {SafRecordType::frame, "frame"},
    {SafRecordType::header, "contentHeader"},
    {SafRecordType::end, "end"},
    {SafRecordType::deflatedBlock, "deflatedBlock"},
    {SafRecordType::objectWideAttribute, "object"},
    {SafRecordType::maskedObject, "maskedObject"},
    {SafRecordType::maskedObjectWideAttribute, "maskedObject"},
};

constexpr Name<SafHeaderType> safHeaderNames[] = {
    {SafHeaderType::surface, "surface"},
    {SafHeaderType::objects, "objects"},
    {SafHeaderType::frames, "frames"},
    {SafHeaderType::colourKeys, "colourKeys"},
    {SafHeaderType::frameDurations, "frameDurations"},
};

template <class Number, std::size_t count>
const char* find(const Name<Number> (&table)[count], std::uint8_t number) {
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [number](const Name<Number>& entry) { return entry.number == Number{number}; });
    return found == std::end(table) ? unknownName : found->name;
}

}  // namespace

const char* recordName(std::uint8_t type) { return find(recordNames, type); }
const char* propertyName(std::uint8_t type) { return find(propertyNames, type); }
const char* frameItemName(std::uint8_t type) { return find(frameItemNames, type); }
const char* commandName(std::uint8_t number) { return find(commandNames, number); }
const char* pathRecordName(std::uint8_t kind) { return find(pathRecordNames, kind); }
const char* characterKindName(std::uint8_t kind) { return find(characterKindNames, kind); }
const char* colourFormatName(std::uint8_t format) { return find(colourFormatNames, format); }
const char* safRecordName(std::uint8_t type) { return find(safRecordNames, type); }
const char* safHeaderName(std::uint8_t type) { return find(safHeaderNames, type); }

std::string_view commandEventName(std::uint8_t event) {
    for (const CommandEventName& each : commandEventNames)
        if (static_cast<std::uint8_t>(each.event) == event) return each.name;
    const std::string_view name = keyNameOf(event);
    return name.empty() ? "key" : name;
}

const char* safEncodingName(std::uint8_t encoding) {
    switch (SafImageEncoding{encoding}) {
        case SafImageEncoding::deflated: return "deflated";
        case SafImageEncoding::jpeg: return "jpeg";
        case SafImageEncoding::refused0:
        case SafImageEncoding::refused16: return "refused";
    }
    return unknownName;
}

}  // namespace qel::author::inspector
