#include "author/source_commands.h"

#include <algorithm>

#include "author/frame_items.h"
#include "author/source_placement.h"
#include "author/structures.h"
#include "format/key_codes.h"
#include "format/record_types.h"

namespace qel::author {
namespace {

// What a command is called, and the fields that it takes beside "on" and "do".
struct CommandForm {
    const char* name;
    CommandNumber number;
    std::array<std::string_view, 4> fields = {};
    bool takesPlacement = false;
};

constexpr CommandForm commandForms[] = {
    {"gotoKeyFrame", CommandNumber::gotoKeyFrame, {"keyFrame"}},
    {"play", CommandNumber::play},
    {"gotoFirstKeyFrame", CommandNumber::gotoFirstKeyFrame},
    {"stop", CommandNumber::stop},
    {"requestStop", CommandNumber::requestStop},
    {"soundOff", CommandNumber::soundOff},
    {"soundOn", CommandNumber::soundOn},
    {"startSound", CommandNumber::startSound, {"sound"}},
    {"stopSound", CommandNumber::stopSound, {"sound"}},
    {"frameLoop", CommandNumber::frameLoop, {"first", "last", "count", "after"}},
    {"openUrl", CommandNumber::openUrl, {"url"}},
    {"vibrate", CommandNumber::vibrate, {"milliseconds"}},
    {"scrollTo", CommandNumber::scrollTo, {"to"}},
    {"scrollBy", CommandNumber::scrollBy, {"by"}},
    {"resetView", CommandNumber::resetView},
    {"zoom", CommandNumber::zoom, {"steps"}},
    {"focusNext", CommandNumber::focusNext},
    {"focusPrevious", CommandNumber::focusPrevious},
    {"selectTarget", CommandNumber::selectTarget, {"instance", "character", "position"}},
    {"placeTarget", CommandNumber::placeTarget, {"character", "position"}, true},
    {"removeTarget", CommandNumber::removeTarget},
    {"ratio", CommandNumber::ratio, {"ratio"}},
    {"colourTransform", CommandNumber::colourTransform, {"colour"}},
    {"setMatrix", CommandNumber::setMatrix, {}, true},
    {"moveBy", CommandNumber::moveBy, {}, true},
    {"alpha", CommandNumber::alpha, {"alpha"}},
    {"fade", CommandNumber::fade, {"change"}},
    {"callNumber", CommandNumber::callNumber, {"number"}},
};

const CommandForm& formOf(const SourceValue& command) {
    const SourceValue& name = memberOf(command, "do");
    const auto found = std::ranges::find(commandForms, std::string_view(textOf(name)), &CommandForm::name);
    if (found == std::end(commandForms)) fail(name, "there is no command \"" + name.text + "\"");
    std::vector<std::string_view> fields{"on", "do"};
    for (const std::string_view field : found->fields)
        if (!field.empty()) fields.push_back(field);
    if (found->takesPlacement) fields.insert(fields.end(), std::begin(placementFields), std::end(placementFields));
    allowOnly(command, std::span<const std::string_view>(fields));
    return *found;
}

std::uint8_t eventOf(const SourceValue& value) {
    if (value.kind == SourceValue::Kind::text)
        for (const CommandEventName& event : commandEventNames)
            if (event.name == value.text) return static_cast<std::uint8_t>(event.event);
    if (value.kind == SourceValue::Kind::text && !keyCodeOf(value.text))
        fail(value, "\"" + value.text + "\" is neither a key (select, left, number-5, a number ...) nor any-key, " +
                        "default or every-frame");
    return keyOf(value);
}

// The events that run a command; a list of them writes it once for each.
std::vector<std::uint8_t> eventsOf(const SourceValue& command, const CommandPlace& place) {
    const SourceValue* on = command.find("on");
    if (!on && !place.eventNeeded) return {static_cast<std::uint8_t>(CommandEvent::anyKey)};
    if (!on) fail(command, "\"on\" is missing: a key, any-key, default or every-frame");
    if (on->kind != SourceValue::Kind::list) return {eventOf(*on)};
    std::vector<std::uint8_t> events;
    for (const SourceValue& event : on->items) events.push_back(eventOf(event));
    if (events.empty()) fail(*on, "at least one event belongs here");
    return events;
}

std::uint32_t whole(const SourceValue& command, const char* field, std::int64_t least, std::int64_t most) {
    return static_cast<std::uint32_t>(integerOf(memberOf(command, field), least, most));
}

Point pointOf(const SourceValue& value) {
    const auto& parts = listOf(value);
    if (parts.size() != 2) fail(value, "a point is [x, y] in pixels");
    const auto coordinate = [](const SourceValue& part) {
        return static_cast<std::int16_t>(integerOf(part, -32768, 32767));
    };
    return {coordinate(parts[0]), coordinate(parts[1])};
}

// Where nothing but a translation is said, the rest stays 0: a relative move then leaves scale and rotation alone.
Matrix relativeMatrix(const SourceValue& command) {
    Placement placement;
    if (!readPlacement(command, placement)) fail(command, "this says nothing of where to");
    Matrix matrix = matrixOf(placement);
    const bool turns = std::ranges::any_of(std::array{"scale", "scaleX", "scaleY", "rotate", "matrix"},
                                           [&](const char* field) { return command.find(field) != nullptr; });
    if (!turns) matrix.a = matrix.b = matrix.c = matrix.d = 0;
    return matrix;
}

Matrix absoluteMatrix(const SourceValue& command) {
    Placement placement;
    readPlacement(command, placement);
    return matrixOf(placement);
}

void writeVibration(ByteWriter& to, const SourceValue& command) {
    constexpr std::uint32_t unit = 100;
    const std::uint32_t time = whole(command, "milliseconds", 0, 255 * unit);
    if (time % unit != 0) fail(memberOf(command, "milliseconds"), "a multiple of 100 belongs here");
    to.u8(time / unit);
}

void writeFrameLoop(ByteWriter& to, const SourceValue& command, const SourceNames& names) {
    to.u16(names.keyFrame(memberOf(command, "first")));
    to.u16(names.labels().lastFrame(memberOf(command, "last")));
    constexpr std::int64_t mostRounds = 256;  // stored as 0
    to.u8(whole(command, "count", 1, mostRounds) % mostRounds);
    to.u16(names.keyFrame(memberOf(command, "after")));
}

// A target is an instance of the frame, or a position and, perhaps, the character that has to be found there.
void writeTarget(ByteWriter& to, const SourceValue& command, const SourceNames& names, const CommandPlace& place) {
    if (const SourceValue* instance = command.find("instance")) {
        for (const char* other : {"character", "position"})
            if (const SourceValue* value = command.find(other))
                fail(*value, "an instance says all there is; character and position do not stand beside it");
        if (!place.findInstance) fail(*instance, "instances are known in the movie's frames only; write a position");
        const std::optional<TargetPosition> target = place.findInstance(textOf(*instance));
        if (!target) fail(*instance, "nothing called \"" + instance->text + "\" is placed here");
        to.u16(target->character).u8(target->position);
        return;
    }
    const SourceValue* character = command.find("character");
    to.u16(character ? names.placeable(*character).id : noCharacter).u8(whole(command, "position", 0, 255));
}

void writeArguments(ByteWriter& to, CommandNumber number, const SourceValue& command, const SourceBuild& build,
                    const CommandPlace& place) {
    const SourceNames& names = build.names;
    constexpr std::size_t mostText = 254;  // beside the event
    switch (number) {
        case CommandNumber::gotoKeyFrame: to.u16(names.keyFrame(memberOf(command, "keyFrame"))); break;
        case CommandNumber::startSound:
        case CommandNumber::stopSound:
            to.u16(names.characterOf(memberOf(command, "sound"), SourceCharacter::Kind::sound, "sound"));
            break;
        case CommandNumber::frameLoop: writeFrameLoop(to, command, names); break;
        case CommandNumber::openUrl: to.text(contentTextOf(memberOf(command, "url"), mostText)); break;
        case CommandNumber::callNumber: to.text(contentTextOf(memberOf(command, "number"), mostText)); break;
        case CommandNumber::vibrate: writeVibration(to, command); break;
        case CommandNumber::scrollTo: writePoint(to, pointOf(memberOf(command, "to"))); break;
        case CommandNumber::scrollBy: writePoint(to, pointOf(memberOf(command, "by"))); break;
        case CommandNumber::zoom: to.u8(whole(command, "steps", -128, 127) & 0xFF); break;
        case CommandNumber::selectTarget: writeTarget(to, command, names, place); break;
        case CommandNumber::placeTarget:
            to.u16(names.placeable(memberOf(command, "character")).id).u8(whole(command, "position", 0, 255));
            writeMatrix(to, absoluteMatrix(command));
            break;
        case CommandNumber::ratio: to.u16(whole(command, "ratio", 0, 65535)); break;
        case CommandNumber::colourTransform:
            writeCompactColourTransform(to, readColourTransform(memberOf(command, "colour")));
            break;
        case CommandNumber::setMatrix: writeMatrix(to, absoluteMatrix(command)); break;
        case CommandNumber::moveBy: writeMatrix(to, relativeMatrix(command)); break;
        case CommandNumber::alpha: to.u8(whole(command, "alpha", 0, 255)); break;
        case CommandNumber::fade: to.u16(whole(command, "change", -255, 255) & 0xFFFF); break;
        case CommandNumber::play:
        case CommandNumber::gotoFirstKeyFrame:
        case CommandNumber::stop:
        case CommandNumber::requestStop:
        case CommandNumber::soundOff:
        case CommandNumber::soundOn:
        case CommandNumber::resetView:
        case CommandNumber::focusNext:
        case CommandNumber::focusPrevious:
        case CommandNumber::removeTarget: break;
    }
}

}  // namespace

std::uint8_t keyOf(const SourceValue& value) {
    if (value.kind != SourceValue::Kind::text) return static_cast<std::uint8_t>(integerOf(value, 0, 255));
    const std::optional<std::uint8_t> code = keyCodeOf(value.text);
    if (!code) fail(value, "\"" + value.text + "\" is no key (select, left, number-5, a number ...)");
    return *code;
}

Bytes compileCommands(const SourceValue& list, const SourceBuild& build, const CommandPlace& place) {
    Bytes commands;
    for (const SourceValue& value : listOf(list)) {
        const CommandForm& form = formOf(value);
        for (const std::uint8_t event : eventsOf(value, place)) {
            ByteWriter body;
            body.u8(event);
            const Bytes bytes = written(value, [&] {
                writeArguments(body, form.number, value, build, place);
                return command(form.number, body.take());
            });
            commands.insert(commands.end(), bytes.begin(), bytes.end());
        }
    }
    return commands;
}

}  // namespace qel::author
