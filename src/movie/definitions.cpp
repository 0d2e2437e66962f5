#include "movie/definitions.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "movie/record_header.h"
#include "movie/sprite.h"
#include "player/engine_services.h"
#include "render/shape.h"
#include "render/styles.h"

namespace qel {
namespace {

// The bytes of one record, streamed through the dictionary's buffer.
struct RecordStream {
    CharacterDictionary& dictionary;
    std::uint32_t offset = 0;    // of the record in the content
    std::uint32_t length = 0;    // of the record
    std::uint32_t consumed = 0;  // bytes of the record that lie before the reader's start
    ContentReader reader;
};

// Refills the buffer from the first byte that the reader has not taken. False when the content cannot bring the bytes.
bool refill(RecordStream& stream) {
    stream.consumed += static_cast<std::uint32_t>(stream.reader.cursor());
    const std::uint32_t left = stream.length - stream.consumed;
    const std::size_t count = std::min<std::size_t>(left, CharacterDictionary::bufferSize);
    const std::span<std::uint8_t> buffer{stream.dictionary.readBuffer.data(), count};
    if (!readContent(*stream.dictionary.player, stream.offset + stream.consumed, buffer)) return false;
    stream.reader = ContentReader(buffer);
    return true;
}

// Feeds a character's body to `take` piece by piece until it is done. A piece that brings nothing new is a broken body.
template <class Take>
Result takePieces(RecordStream& stream, Take take) {
    for (;;) {
        const std::size_t before = stream.reader.cursor();
        const Result taken = take(stream.reader);
        if (taken != Result::nothing) return taken;
        if (stream.reader.cursor() == before && before == 0) return Result::brokenDefinition;
        if (stream.consumed + stream.reader.cursor() >= stream.length) return Result::brokenDefinition;
        if (!refill(stream)) return Result::badContent;
    }
}

// Names of styles become the characters they name. A style that cannot be had makes the shape unusable.
template <class Style>
Result resolveStyle(CharacterDictionary& dictionary, std::uint16_t id, CharacterHold<Style>& style) {
    if (id == noCharacter) return Result::done;
    const Lookup found = lookupCharacter(dictionary, id);
    if (!found.character) return failed(found.result) ? found.result : Result::brokenDefinition;
    const bool isLine = found.character->kind == CharacterKind::lineStyle;
    const bool isFill = found.character->kind == CharacterKind::solidFill;
    if (std::is_same_v<Style, LineStyle> ? !isLine : !isFill) return Result::brokenDefinition;
    style = CharacterHold<Style>(static_cast<Style*>(found.character));
    return Result::done;
}

Result resolveStyles(CharacterDictionary& dictionary, ShapeGeometry& geometry) {
    for (StyleGroup& group : geometry.groups) {
        for (const Result resolved :
             {resolveStyle(dictionary, group.fill0Id, group.fill0),
              resolveStyle(dictionary, group.fill1Id, group.fill1), resolveStyle(dictionary, group.lineId, group.line)})
            if (failed(resolved)) return resolved;
        if (group.line) geometry.maximumLineWidth = std::max(geometry.maximumLineWidth, group.line->width);
    }
    return Result::done;
}

Result decodeShape(RecordStream& stream, std::uint32_t bodyLength, Character*& character) {
    Pool& pool = *stream.dictionary.pool;
    PoolPtr<Shape> shape;
    const Result begun = beginShape(stream.reader, bodyLength, pool, shape);
    if (failed(begun)) return begun;
    const Result taken = takePieces(stream, [&](ContentReader& reader) { return continueShape(*shape, reader, pool); });
    if (failed(taken)) return taken;
    // The styles stream through the same buffer, so the shape's own bytes must be used up by now.
    const Result resolved = resolveStyles(stream.dictionary, shape->geometry);
    if (failed(resolved)) return resolved;
    character = shape.release();
    return Result::done;
}

Result decodeSprite(RecordStream& stream, std::uint32_t bodyLength, Character*& character) {
    ContentReader& reader = stream.reader;
    const std::size_t bodyStart = reader.cursor();
    const std::uint32_t headLength = reader.u16();
    reader.u16();  // the identifier
    PoolPtr<Sprite> sprite;
    const Result begun = beginSprite(reader, headLength, bodyLength, *stream.dictionary.pool, sprite);
    if (failed(begun)) return begun;
    // A head longer than the buffer leaves the timeline further on.
    const std::size_t timelineStart = bodyStart + headLength;
    if (timelineStart > reader.cursor() + reader.left()) {
        stream.consumed = static_cast<std::uint32_t>(timelineStart);
        reader = ContentReader();
        if (!refill(stream)) return Result::badContent;
    } else {
        reader.seek(timelineStart);
    }
    const Result taken = takePieces(stream, [&](ContentReader& more) { return continueSprite(*sprite, more); });
    if (failed(taken)) return taken;
    character = sprite.release();
    return Result::done;
}

template <class Style>
Result keep(Result result, PoolPtr<Style>& style, Character*& character) {
    if (!failed(result)) character = style.release();
    return result;
}

Result decodeRecord(CharacterDictionary& dictionary, std::uint16_t id, const DictionaryEntry& entry,
                    Character*& character) {
    RecordStream stream{.dictionary = dictionary, .offset = entry.offset, .length = entry.length, .reader = {}};
    if (!refill(stream)) return Result::badContent;
    RecordHeader header;
    if (!readRecordHeader(stream.reader, header)) return Result::brokenDefinition;
    if (header.length() > std::numeric_limits<std::uint32_t>::max() - entry.offset) return Result::badContent;
    stream.length = static_cast<std::uint32_t>(header.length());  // the record itself knows best

    // Characters that are read whole have to fit the buffer.
    const bool whole = stream.reader.available(header.bodyLength);
    Pool& pool = *dictionary.pool;
    switch (RecordType{header.type}) {
        case RecordType::sprite: return decodeSprite(stream, header.bodyLength, character);
        case RecordType::shape:
            // A shape that names a shape as its style would lead from one to the next without end.
            if (dictionary.decoding > 1) return Result::brokenDefinition;
            stream.reader.u16();  // the identifier
            return decodeShape(stream, header.bodyLength, character);
        case RecordType::solidFill: {
            PoolPtr<SolidFill> style;
            stream.reader.u16();
            if (!whole) return Result::brokenDefinition;
            return keep(defineSolidFill(stream.reader, id, pool, style), style, character);
        }
        case RecordType::lineStyle: {
            PoolPtr<LineStyle> style;
            stream.reader.u16();
            if (!whole) return Result::brokenDefinition;
            return keep(defineLineStyle(stream.reader, pool, style), style, character);
        }
        default: return Result::nothing;
    }
}

}  // namespace

Result decodeDefinition(CharacterDictionary& dictionary, std::uint16_t id, const DictionaryEntry& entry,
                        Character*& character) {
    ++dictionary.decoding;
    const Result result = decodeRecord(dictionary, id, entry, character);
    --dictionary.decoding;
    return result;
}

}  // namespace qel
