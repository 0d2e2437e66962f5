#include "movie/definition.h"

#include "movie/button.h"
#include "movie/compression_table.h"
#include "movie/edit_text.h"
#include "movie/frame_cache.h"
#include "movie/sound_character.h"
#include "movie/sprite.h"
#include "movie/style_resolution.h"
#include "render/morph_shape.h"
#include "render/shape.h"
#include "render/styles.h"

namespace qel {
namespace {

// Runs a definer and keeps what it made.
template <class T, class Define>
Result keep(CharacterPtr& character, Define define) {
    PoolPtr<T> made;
    const Result result = define(made);
    if (!failed(result)) character.reset(made.release());
    return result;
}

// The definers of styles read behind the identifier.
ContentReader behindIdentifier(ContentReader body) {
    body.u16();
    return body;
}

// Kinds that make a character when they are read whole.
constexpr bool isReadWhole(std::uint8_t type) {
    switch (RecordType{type}) {
        case RecordType::solidFill:
        case RecordType::gradientFill:
        case RecordType::bitmapFill:
        case RecordType::lineStyle:
        case RecordType::morphShape:
        case RecordType::commandButton:
        case RecordType::textField:
        case RecordType::compressionTable: return true;
        default: return false;
    }
}

Result defineWhole(CharacterPtr& character, const ScannedRecord& record, ContentReader body, Pool& pool) {
    if (!isReadWhole(record.header.type)) return Result::nothing;
    if (record.header.length() > longestWholeRecord || !body.available(record.header.bodyLength))
        return Result::brokenDefinition;
    switch (RecordType{record.header.type}) {
        case RecordType::solidFill:
            return keep<SolidFill>(character, [&](PoolPtr<SolidFill>& style) {
                return defineSolidFill(behindIdentifier(body), record.id, pool, style);
            });
        case RecordType::gradientFill:
            return keep<GradientFill>(character, [&](PoolPtr<GradientFill>& style) {
                return defineGradientFill(behindIdentifier(body), record.id, pool, style);
            });
        case RecordType::bitmapFill:
            return keep<BitmapFill>(character, [&](PoolPtr<BitmapFill>& style) {
                return defineBitmapFill(behindIdentifier(body), record.id, pool, style);
            });
        case RecordType::morphShape:
            return keep<MorphShape>(character, [&](PoolPtr<MorphShape>& morph) {
                return defineMorphShape(behindIdentifier(body), pool, morph);
            });
        case RecordType::lineStyle:
            return keep<LineStyle>(character, [&](PoolPtr<LineStyle>& style) {
                return defineLineStyle(behindIdentifier(body), pool, style);
            });
        case RecordType::commandButton:
            return keep<CommandButton>(
                character, [&](PoolPtr<CommandButton>& button) { return defineCommandButton(body, pool, button); });
        case RecordType::textField:
            return keep<EditText>(character,
                                  [&](PoolPtr<EditText>& field) { return defineEditText(body, pool, field); });
        case RecordType::compressionTable:
            return keep<CompressionTable>(
                character, [&](PoolPtr<CompressionTable>& table) { return defineCompressionTable(body, pool, table); });
        default: return Result::nothing;
    }
}

}  // namespace

Result beginDefinition(Definition& definition, const ScannedRecord& record, std::uint32_t bodyOffset,
                       ContentReader& body, Pool& pool) {
    const std::uint32_t length = record.header.bodyLength;
    definition = {.type = record.header.type, .id = record.id, .character = {}};
    CharacterPtr& character = definition.character;
    switch (RecordType{record.header.type}) {
        case RecordType::shape:
            return keep<Shape>(character, [&](PoolPtr<Shape>& shape) {
                body.u16();  // the identifier
                return beginShape(body, length, pool, shape);
            });
        case RecordType::sprite:
            return keep<Sprite>(character,
                                [&](PoolPtr<Sprite>& sprite) { return beginSprite(body, length, pool, sprite); });
        case RecordType::sound:
            return keep<Sound>(character, [&](PoolPtr<Sound>& sound) { return beginSound(body, length, pool, sound); });
        case RecordType::button:
            return keep<Button>(character,
                                [&](PoolPtr<Button>& button) { return beginButton(body, length, pool, button); });
        case RecordType::frame:
            return keep<FrameCache>(character, [&](PoolPtr<FrameCache>& cache) {
                return beginFrameCache(body, length, bodyOffset, pool, cache);
            });
        default: break;
    }
    const Result defined = defineWhole(character, record, body, pool);
    if (defined == Result::done) body.skip(length);
    return defined;
}

Result continueDefinition(Definition& definition, ContentReader& piece, Pool& pool) {
    Character* character = definition.character.get();
    switch (character->kind) {
        case CharacterKind::shape: return continueShape(static_cast<Shape&>(*character), piece, pool);
        case CharacterKind::sprite: return continueSprite(static_cast<Sprite&>(*character), piece);
        case CharacterKind::sound: return continueSound(static_cast<Sound&>(*character), piece);
        case CharacterKind::button: return continueButton(static_cast<Button&>(*character), piece, pool);
        case CharacterKind::frameCache: return continueFrameCache(static_cast<FrameCache&>(*character), piece);
        default: return Result::done;  // read whole
    }
}

Result finishDefinition(CharacterDictionary& dictionary, Definition& definition) {
    if (definition.character->kind != CharacterKind::shape) return Result::done;
    // A shape that names a shape as its style would lead from one to the next without end.
    if (dictionary.decoding > 1) return Result::brokenDefinition;
    return resolveStyles(dictionary, static_cast<Shape&>(*definition.character).geometry);
}

}  // namespace qel
