#include "movie/sprite.h"

#include <algorithm>

#include "format/integers.h"
#include "movie/body_copy.h"

namespace qel {
namespace {

// Every list of the head stands behind a byte and a u16 that nobody uses.
constexpr std::size_t listPrefix = 3;

// Whether `count` entries of at least `bits` can lie in what is left: a count is believed no further than its bits go.
bool canHold(const ContentReader& head, std::uint32_t count, std::uint32_t bits) {
    return std::uint64_t{count} * bits <= (std::uint64_t{head.left()} + 1) * 8;
}

Result readBlocks(ContentReader& head, std::uint32_t headLength, Pool& pool, Sprite& sprite) {
    head.skip(listPrefix);
    const std::uint32_t count = head.u16();
    head.align();
    const unsigned offsetBits = head.ub(5);
    const unsigned defaultLengthBits = head.ub(5);
    constexpr std::uint32_t leastEntryBits = 17;
    if (!canHold(head, count, leastEntryBits + offsetBits)) return Result::brokenDefinition;
    if (failed(sprite.blocks.assignZeros(pool, count))) return Result::outOfMemory;
    constexpr std::uint32_t recordHeader = 5;  // offsets in the content count from the start of the record
    for (SpriteBlock& block : sprite.blocks) {
        const unsigned lengthBits = head.ub(1) != 0 ? head.ub(5) : defaultLengthBits;
        block.id = static_cast<std::uint16_t>(head.ub(16));
        block.offset = static_cast<std::uint16_t>(head.ub(offsetBits) - (headLength + recordHeader));
        block.length = static_cast<std::uint16_t>(head.ub(lengthBits));
    }
    return Result::done;
}

Result readLabels(ContentReader& head, Pool& pool, Sprite& sprite) {
    head.skip(listPrefix);
    const std::uint32_t count = head.u16();
    constexpr std::uint32_t leastEntryBits = 24;
    if (!canHold(head, count, leastEntryBits)) return Result::brokenDefinition;
    if (failed(sprite.labels.assignZeros(pool, count))) return Result::outOfMemory;
    for (SpriteLabel& label : sprite.labels) {
        label.frame = head.u16();
        const std::span<const std::uint8_t> text = head.shortText();
        const std::size_t length = std::min(text.size(), SpriteLabel::longestText);
        for (std::size_t i = 0; i < length; ++i) label.text[i] = static_cast<char>(text[i]);
    }
    return Result::done;
}

Result readKeyFrames(ContentReader& head, Pool& pool, Sprite& sprite) {
    head.skip(listPrefix);
    const std::uint32_t count = head.u16();
    head.align();
    const unsigned bits = head.ub(4) + 1;
    if (!canHold(head, count, bits)) return Result::brokenDefinition;
    if (failed(sprite.keyFrames.assignZeros(pool, count))) return Result::outOfMemory;
    for (std::uint16_t& frame : sprite.keyFrames) frame = static_cast<std::uint16_t>(head.ub(bits));
    return Result::done;
}

Result readLists(ContentReader& head, std::uint32_t headLength, Pool& pool, Sprite& sprite) {
    head.align();
    head.ub(5);
    const bool hasBlocks = head.ub(1) != 0, hasLabels = head.ub(1) != 0, hasKeyFrames = head.ub(1) != 0;
    Result read = hasBlocks ? readBlocks(head, headLength, pool, sprite) : Result::done;
    if (!failed(read) && hasLabels) read = readLabels(head, pool, sprite);
    if (!failed(read) && hasKeyFrames) read = readKeyFrames(head, pool, sprite);
    if (failed(read)) return read;
    return head.ok() ? Result::done : Result::brokenDefinition;
}

}  // namespace

Result beginSprite(ContentReader& body, std::uint32_t bodyLength, Pool& pool, PoolPtr<Sprite>& sprite) {
    const std::uint32_t headLength = ContentReader(body).u16();
    if (headLength > bodyLength || !body.available(headLength)) return Result::brokenDefinition;
    ContentReader head = body.section(headLength);
    PoolPtr<Sprite> loading = makeCharacter<Sprite>(pool, CharacterKind::sprite);
    if (!loading) return Result::outOfMemory;
    head.u16();  // its own length
    head.u16();  // the identifier
    loading->frameCount = head.u16();
    loading->keyFrameCount = head.u16();
    const Result lists = readLists(head, headLength, pool, *loading);
    if (failed(lists)) return lists;
    if (failed(loading->timeline.assignZeros(pool, bodyLength - headLength))) return Result::outOfMemory;
    sprite = std::move(loading);
    return Result::done;
}

Result continueSprite(Sprite& sprite, ContentReader& reader) {
    return copyPiece(sprite.timeline, sprite.filled, reader);
}

}  // namespace qel
