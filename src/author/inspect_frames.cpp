#include <string>
#include <vector>

#include "author/inspect_fields.h"
#include "author/inspect_movie.h"
#include "author/inspect_names.h"
#include "format/commands.h"
#include "format/frame_items.h"

namespace qel::author::inspector {
namespace {

std::uint16_t reference(Listing& list, MovieFacts& facts, FieldReader& fields, const char* name) {
    const std::size_t at = fields.at();
    const std::uint16_t id = fields.u16(name);
    if (!fields.broken()) noteReference(list, facts, id, at);
    return id;
}

// The events that a mask of five bits names, in words. What the last two stand for is not known.
void addEvents(Listing& list, const char* name, std::uint32_t mask) {
    static constexpr const char* eventNames[] = {"load", "unload", "every-frame", "event4", "event5"};
    std::string words;
    for (unsigned i = 0; i < 5; ++i) {
        if (mask >> (4 - i) & 1) words += (words.empty() ? "" : " ") + std::string(eventNames[i]);
    }
    addWord(list, name, words);
}

// Handlers follow one another while more bytes are left than the head of one takes.
void inspectHandlers(Listing& list, std::size_t at, std::size_t end) {
    constexpr std::size_t headBytes = 6;
    while (end - at > headBytes && !list.full) {
        FieldReader fields(list, at, end);
        const std::uint32_t length = fields.u32(nullptr);
        const std::size_t handlerEnd = fields.at() + length;
        PartScope scope(list, "handler", -1, at, std::min(handlerEnd, end) - at);
        if (length < 2 || handlerEnd > end) {
            addError(list, at, "the handler's length %u does not fit into its item", length);
            return;
        }
        fields.bits(3, nullptr);
        addEvents(list, "events", fields.bits(5, nullptr));
        fields.u8(nullptr);
        inspectActions(list, fields.at(), handlerEnd);
        at = handlerEnd;
    }
}

void inspectPlaceClip(Listing& list, MovieFacts& facts, FieldReader& fields, std::size_t end) {
    reference(list, facts, fields, "character");
    fields.u8("depth");
    fields.align();
    fields.bits(6, nullptr);
    const bool hasName = fields.flag(nullptr);
    const bool hasEvents = fields.flag(nullptr);
    if (hasName) fields.shortText("name");
    if (!hasEvents || fields.broken()) return;
    fields.align();
    fields.bits(3, nullptr);
    const std::uint32_t events = fields.bits(5, nullptr);
    if (fields.broken()) return;
    addEvents(list, "events", events);
    inspectHandlers(list, fields.at(), end);
}

void inspectPurgeOrderUpdate(Listing& list, MovieFacts& facts, FieldReader& fields) {
    fields.align();
    const unsigned width = fields.bits(5, nullptr) + 1;
    std::vector<std::int32_t> characters, positions;
    while (fields.bitsLeft() >= 2 * width) {
        const std::uint32_t character = fields.bits(width, nullptr);
        const std::uint32_t position = fields.bits(width, nullptr) & 0xFF;
        if (position == 0) break;
        if (character < noCharacter) noteReference(list, facts, static_cast<std::uint16_t>(character), fields.at() - 1);
        characters.push_back(static_cast<std::int32_t>(character));
        positions.push_back(static_cast<std::int32_t>(position));
    }
    addNumbers(list, "characters", characters);
    addNumbers(list, "positions", positions);
}

void inspectItemBody(Listing& list, MovieFacts& facts, unsigned type, std::size_t begin, std::size_t end) {
    FieldReader fields(list, begin, end);
    switch (FrameItemType{static_cast<std::uint8_t>(type)}) {
        case FrameItemType::place:
            reference(list, facts, fields, "character");
            fields.u8("depth");
            break;
        case FrameItemType::remove: fields.u8("depth"); break;
        case FrameItemType::ratio:
            fields.u8("depth");
            fields.u16("ratio");
            break;
        case FrameItemType::colour:
            fields.u8("depth");
            fields.fullColourTransform();
            break;
        case FrameItemType::move:
            fields.u8("depth");
            fields.matrix("matrix");
            break;
        case FrameItemType::alpha:
            fields.u8("depth");
            fields.u8("alpha");
            break;
        case FrameItemType::startSound:
        case FrameItemType::stopSound: reference(list, facts, fields, "sound"); break;
        case FrameItemType::volume: fields.u8("volume"); break;
        case FrameItemType::commands: inspectCommandList(list, facts, begin, end); break;
        case FrameItemType::purgeOrderUpdate: inspectPurgeOrderUpdate(list, facts, fields); break;
        case FrameItemType::instanceNumber: fields.u16("number"); break;
        case FrameItemType::placeClip: inspectPlaceClip(list, facts, fields, end); break;
        case FrameItemType::actions: inspectActions(list, begin, end); break;
    }
}

void inspectFrameItems(Listing& list, MovieFacts& facts, std::size_t at, std::size_t end) {
    while (at < end && !list.full) {
        const unsigned header = list.content[at];
        const unsigned type = header >> 4;
        const bool isLong = (header & 15) == longItemLength;
        const std::size_t body = at + 1 + (isLong ? itemLengthBytes(type) : 0);
        std::size_t length = header & 15;
        if (isLong && body <= end) {
            length = 0;
            for (std::size_t i = body; i-- > at + 1;) length = length << 8 | list.content[i];
        }
        PartScope scope(list, frameItemName(static_cast<std::uint8_t>(type)), static_cast<int>(type), at,
                        std::min(body + length, end) - at);
        if (body > end) {
            addError(list, at, "the item's length is cut off: the frame ends at %zu", end);
            return;
        }
        if (length > end - body) {
            addError(list, at, "the item of %zu bytes runs past the end of its frame at %zu", length, end);
            return;
        }
        inspectItemBody(list, facts, type, body, body + length);
        at = body + length;
    }
}

// A count of 0 runs down from 256.
void inspectRounds(Listing& list, FieldReader& fields) {
    const std::uint8_t count = fields.u8(nullptr);
    if (!fields.broken()) addNumber(list, "count", count == 0 ? 256 : count);
}

void inspectCommandBody(Listing& list, MovieFacts& facts, unsigned number, FieldReader& fields) {
    const std::uint8_t event = fields.u8("event");
    if (fields.broken()) return;
    addWord(list, "when", commandEventName(event));
    switch (CommandNumber{static_cast<std::uint8_t>(number)}) {
        case CommandNumber::gotoKeyFrame: reference(list, facts, fields, "keyFrame"); break;
        case CommandNumber::startSound:
        case CommandNumber::stopSound: reference(list, facts, fields, "sound"); break;
        case CommandNumber::frameLoop:
            reference(list, facts, fields, "firstKeyFrame");
            fields.u16("lastFrame");
            inspectRounds(list, fields);
            reference(list, facts, fields, "keyFrameAfter");
            break;
        case CommandNumber::openUrl: fields.rest("url"); break;
        case CommandNumber::callNumber: fields.rest("number"); break;
        case CommandNumber::vibrate: {
            const unsigned tenths = fields.u8(nullptr);
            if (!fields.broken()) addNumber(list, "milliseconds", tenths * 100);
            break;
        }
        case CommandNumber::scrollTo: fields.point("to"); break;
        case CommandNumber::scrollBy: fields.point("by"); break;
        case CommandNumber::zoom: {
            const std::uint8_t steps = fields.u8(nullptr);
            if (!fields.broken()) addNumber(list, "steps", static_cast<std::int8_t>(steps));
            break;
        }
        case CommandNumber::selectTarget:
        case CommandNumber::placeTarget:
            reference(list, facts, fields, "character");
            fields.u8("position");
            if (number == static_cast<unsigned>(CommandNumber::placeTarget)) fields.matrix("matrix");
            break;
        case CommandNumber::ratio: fields.u16("ratio"); break;
        case CommandNumber::colourTransform: fields.compactColourTransform(); break;
        case CommandNumber::setMatrix:
        case CommandNumber::moveBy: fields.matrix("matrix"); break;
        case CommandNumber::alpha: fields.u8("alpha"); break;
        case CommandNumber::fade: {
            const std::uint16_t change = fields.u16(nullptr);
            if (!fields.broken()) addNumber(list, "change", static_cast<std::int16_t>(change));
            break;
        }
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

bool inspectFrame(Listing& list, MovieFacts& facts, const RecordPlace& record, TimelineOf owner, std::uint32_t index) {
    FieldReader fields(list, record.body, record.end);
    addNumber(list, "index", index);
    if (owner == TimelineOf::movie) {
        const auto label = facts.labels.find(index);
        if (label != facts.labels.end()) addText(list, "label", label->second);
    }
    const std::uint16_t id = fields.u16(nullptr);
    if (fields.broken()) return false;
    const bool cached = id != noCharacter;
    addYesNo(list, "cached", cached);
    if (cached) {
        addNumber(list, "cacheIdentifier", id);
        const unsigned number = fields.u16("frameNumber");
        if (!fields.broken() && number != index) {
            addWarning(list, record.body + 2, "frame %u calls itself frame %u: gotos count from there", index, number);
        }
        if (owner == TimelineOf::movie) noteDefinition(list, facts, id, record);
    }
    if (!fields.broken()) inspectFrameItems(list, facts, fields.at(), record.end);
    return cached;
}

void inspectCommandList(Listing& list, MovieFacts& facts, std::size_t begin, std::size_t end) {
    std::size_t at = begin;
    while (at < end && !list.full) {
        const unsigned header = list.content[at];
        const bool isLong = (header & 3) == longCommandSizeCode;
        const std::size_t body = at + 1 + (isLong ? 1 : 0);
        const std::size_t size = !isLong ? (header & 3) + 1 : body <= end ? list.content[at + 1] : 0;
        const unsigned number = header >> 2 & 63;
        PartScope scope(list, commandName(static_cast<std::uint8_t>(number)), static_cast<int>(number), at,
                        std::min(body + size, end) - at);
        if (body > end || size > end - body) {
            addError(list, at, "the command of %zu bytes runs past the end of its list at %zu", size, end);
            return;
        }
        FieldReader fields(list, body, body + size);
        inspectCommandBody(list, facts, number, fields);
        at = body + size;
    }
}

// An action's code from 0x80 on announces a u16 length and operands; code 0 ends the list early.
void inspectActions(Listing& list, std::size_t begin, std::size_t end) {
    std::size_t at = begin;
    std::size_t count = 0;
    while (at < end && list.content[at] != 0) {
        std::size_t length = 1;
        if (list.content[at] >= 0x80) {
            length =
                end - at < 3 ? 3 : 3 + std::size_t{list.content[at + 1]} + (std::size_t{list.content[at + 2]} << 8);
        }
        if (length > end - at) break;
        at += length;
        ++count;
    }
    addNumber(list, "actions", static_cast<std::int64_t>(count));
    addNumber(list, "actionBytes", static_cast<std::int64_t>(end - begin));
    addCode(list, "code", list.content.subspan(begin, end - begin));
    if (at < end && list.content[at] != 0)
        addError(list, at, "action 0x%02X runs past the end of its list", unsigned{list.content[at]});
}

}  // namespace qel::author::inspector
