#include "movie/instances.h"

#include "movie/buttons.h"
#include "movie/movie.h"

namespace qel {
namespace {

Result makeShape(Movie& movie, Shape& shape, DisplayObject*& made) {
    PoolPtr<ShapeInstance> instance = makePooled<ShapeInstance>(movie.pool);
    if (!instance) {
        releaseCharacter(shape);
        return Result::outOfMemory;
    }
    instance->kind = ObjectKind::shape;
    instance->shape = CharacterHold<Shape>(&shape);
    made = instance.release();
    return Result::done;
}

// Looks up one of the shapes of a morph. `nothing`: there is none.
Result lookupShape(Movie& movie, std::uint16_t id, CharacterHold<Shape>& shape) {
    CharacterHold<Character> character;
    const Result found = lookupForPlacement(movie, id, character);
    if (failed(found)) return found;
    if (!character || character->kind != CharacterKind::shape) return Result::nothing;
    shape = CharacterHold<Shape>(static_cast<Shape*>(character.get()));
    return Result::done;
}

Result makeMorphOf(Movie& movie, const MorphShape& character, Morph& morph) {
    for (auto [id, shape] : {std::pair{character.startId, &morph.start}, {character.endId, &morph.end}}) {
        const Result found = lookupShape(movie, id, *shape);
        if (found != Result::done) return found;
    }
    return makeMorph(character, movie.pool, morph);
}

Result makeMorphInstance(Movie& movie, const MorphShape& character, DisplayObject*& made) {
    PoolPtr<MorphInstance> instance = makePooled<MorphInstance>(movie.pool);
    if (!instance) return Result::outOfMemory;
    instance->kind = ObjectKind::morph;
    const Result result = makeMorphOf(movie, character, instance->morph);
    if (result == Result::done)
        made = instance.release();
    else
        releaseShapes(instance->morph);
    return result;
}

Result makeText(Movie& movie, EditText& field, DisplayObject*& made) {
    PoolPtr<TextInstance> instance = makePooled<TextInstance>(movie.pool);
    if (!instance) return Result::outOfMemory;
    instance->kind = ObjectKind::text;
    instance->field = CharacterHold<EditText>(&field);
    made = instance.release();
    return Result::done;
}

Result makeKind(Movie& movie, DisplayObject* owner, Character& character, ClipArguments* arguments,
                DisplayObject*& made) {
    switch (character.kind) {
        case CharacterKind::shape: return makeShape(movie, static_cast<Shape&>(character), made);
        case CharacterKind::morphShape: return makeMorphInstance(movie, static_cast<MorphShape&>(character), made);
        case CharacterKind::editText: return makeText(movie, static_cast<EditText&>(character), made);
        case CharacterKind::sprite: return makeClip(movie, owner, static_cast<Sprite&>(character), arguments, made);
        case CharacterKind::button:
        case CharacterKind::commandButton:
            return makeButton(movie, owner, static_cast<ButtonCharacter&>(character), made);
        default: return Result::nothing;
    }
}

}  // namespace

Result lookupForPlacement(Movie& movie, std::uint16_t id, CharacterHold<Character>& character) {
    Lookup found = lookupCharacter(movie.dictionary, id);
    character = std::move(found.character);
    if (!failed(found.result)) return Result::done;
    return found.result == Result::badContent ? Result::badContent : Result::outOfMemory;
}

Result makeInstance(Movie& movie, DisplayObject* owner, Character& character, std::uint16_t id,
                    ClipArguments* arguments, DisplayObject*& made) {
    const Result result = makeKind(movie, owner, character, arguments, made);
    if (result != Result::done) return result;
    made->characterId = id;
    made->owner = owner;
    made->pool = &movie.pool;
    return Result::done;
}

}  // namespace qel
