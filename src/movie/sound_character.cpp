#include "movie/sound_character.h"

#include "movie/body_copy.h"

namespace qel {

Result beginSound(ContentReader& body, std::uint32_t bodyLength, Pool& pool, PoolPtr<Sound>& sound) {
    constexpr std::uint32_t headLength = 6;
    if (bodyLength < headLength || !body.available(headLength)) return Result::brokenDefinition;
    PoolPtr<Sound> loading = makeCharacter<Sound>(pool, CharacterKind::sound);
    if (!loading) return Result::outOfMemory;
    body.u16();  // the identifier
    loading->sampleValue = body.u16();
    body.align();
    loading->format = static_cast<std::uint8_t>(body.ub(4));
    loading->rateCode = static_cast<std::uint8_t>(body.ub(2));
    loading->firstFlag = body.ub(1) != 0;
    loading->secondFlag = body.ub(1) != 0;
    loading->kept = body.u8();
    if (failed(loading->data.assignZeros(pool, bodyLength - headLength))) return Result::outOfMemory;
    sound = std::move(loading);
    return Result::done;
}

Result continueSound(Sound& sound, ContentReader& reader) { return copyPiece(sound.data, sound.filled, reader); }

}  // namespace qel
