#include "movie/first_use.h"

#include <algorithm>
#include <limits>

#include "movie/definition.h"
#include "player/engine_services.h"

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

// Feeds a body piece by piece until the character has all of it. A piece that brings nothing new is a broken body.
Result takePieces(RecordStream& stream, Definition& definition) {
    for (;;) {
        const std::size_t before = stream.reader.cursor();
        const Result taken = continueDefinition(definition, stream.reader, *stream.dictionary.pool);
        if (taken != Result::nothing) return taken;
        if (stream.reader.cursor() == before && before == 0) return Result::brokenDefinition;
        if (stream.consumed + stream.reader.cursor() >= stream.length) return Result::brokenDefinition;
        if (!refill(stream)) return Result::badContent;
    }
}

Result decodeRecord(CharacterDictionary& dictionary, std::uint16_t id, const DictionaryEntry& entry,
                    Definition& definition) {
    const std::uint32_t contentLength = dictionary.player->contentLength;
    if (entry.offset >= contentLength) return Result::badContent;
    RecordStream stream{.dictionary = dictionary,
                        .offset = entry.offset,
                        .length = std::min(entry.length, contentLength - entry.offset),
                        .reader = {}};
    if (!refill(stream)) return Result::badContent;
    ScannedRecord record;
    record.id = id;
    if (!readRecordHeader(stream.reader, record.header)) return Result::brokenDefinition;
    if (record.header.length() > std::numeric_limits<std::uint32_t>::max() - entry.offset) return Result::badContent;
    stream.length = static_cast<std::uint32_t>(record.header.length());  // the directory may say another
    const std::uint32_t bodyOffset = entry.offset + record.header.headerLength;
    if (stream.length > entry.length) {  // more of it than was read
        stream.reader = {};
        if (!refill(stream)) return Result::badContent;
        stream.reader.skip(record.header.headerLength);
    }
    const std::size_t held = std::min<std::size_t>(stream.reader.left(), record.header.bodyLength);
    stream.reader = ContentReader(stream.reader.rest().first(held));
    stream.consumed = record.header.headerLength;
    const Result begun = beginDefinition(definition, record, bodyOffset, stream.reader, *dictionary.pool);
    if (begun != Result::done) return begun;
    const Result taken = takePieces(stream, definition);
    if (failed(taken)) return taken;
    // Styles stream through the same buffer: the character's own bytes are used up by now.
    return finishDefinition(dictionary, definition);
}

}  // namespace

Result decodeDefinition(CharacterDictionary& dictionary, std::uint16_t id, const DictionaryEntry& entry,
                        CharacterPtr& character) {
    ++dictionary.decoding;
    Definition definition;
    const Result result = decodeRecord(dictionary, id, entry, definition);
    --dictionary.decoding;
    if (result == Result::done) character = std::move(definition.character);
    return result;
}

}  // namespace qel
