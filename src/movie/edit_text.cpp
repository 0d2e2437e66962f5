#include "movie/edit_text.h"

#include "format/colour_formats.h"
#include "movie/structures.h"

namespace qel {

Result defineEditText(ContentReader body, Pool& pool, PoolPtr<EditText>& field) {
    PoolPtr<EditText> loading = makeCharacter<EditText>(pool, CharacterKind::editText);
    if (!loading) return Result::outOfMemory;
    body.u16();  // the identifier
    loading->bounds = readRect(body);
    loading->flags = body.u16();
    if ((loading->flags & EditText::hasVariable) != 0) {
        if (failed(copyText(pool, body.shortText(), loading->variable))) return Result::outOfMemory;
    }
    if ((loading->flags & EditText::hasKept) != 0) loading->kept = body.u16();
    for (std::uint8_t& setting : loading->settings) setting = body.u8();
    loading->colour = rgb565From24(body.u24());
    loading->lastSetting = body.u8();
    const std::span<const std::uint8_t> text = body.shortText();
    if (!body.ok()) return Result::brokenDefinition;
    if (failed(copyText(pool, text, loading->text))) return Result::outOfMemory;
    field = std::move(loading);
    return Result::done;
}

}  // namespace qel
