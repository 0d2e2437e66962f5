#include "format/frame_items.h"

#include "movie/command_list.h"
#include "movie/frame_items.h"
#include "movie/movie.h"
#include "movie/sounds.h"
#include "movie/structures.h"
#include "movie/timeline.h"
#include "script/machine.h"

namespace qel {
namespace {

// Where an item stands.
struct ItemContext {
    Movie& movie;
    const Timeline& timeline;
    std::uint32_t offset = 0;  // of the item
};

// The identity of the placement that an item makes. A given number is used up.
std::uint32_t takePlaceKey(const ItemContext& context) {
    const std::uint16_t given = std::exchange(context.timeline.nextPlacement.value, PlacementNumber::none);
    return given != PlacementNumber::none ? given : context.offset;
}

Result applyPlace(const ItemContext& context, ContentReader body) {
    Placement placement;
    placement.id = body.u16();
    placement.depth = body.u8();
    if (!body.ok()) return Result::badContent;
    placement.placeKey = takePlaceKey(context);
    DisplayObject* placed = nullptr;
    return placeCharacter(context.movie, context.timeline, placement, placed);
}

// A handler's u32 length counts the two bytes in front of its code too.
Result readHandler(ContentReader& body, Pool& pool, ClipHandlers& handlers) {
    constexpr std::uint32_t headBytes = 2;
    const std::uint32_t length = body.u32();
    body.ub(3);
    ClipHandler handler;
    handler.onLoad = body.ub(1) != 0;
    handler.onUnload = body.ub(1) != 0;
    handler.onFrame = body.ub(1) != 0;
    body.u8();  // not used
    if (!body.ok() || length < headBytes || !body.available(length - headBytes)) return Result::badContent;
    if (failed(handler.code.assign(pool, body.take(length - headBytes)))) return Result::outOfMemory;
    return handlers.list.append(pool, std::move(handler));
}

Result readHandlers(ContentReader& body, Pool& pool, ClipHandlers& handlers) {
    constexpr std::size_t leastHandler = 6;
    body.align();
    body.ub(3);
    handlers.onLoad = body.ub(1) != 0;
    handlers.onUnload = body.ub(1) != 0;
    handlers.onFrame = body.ub(1) != 0;
    body.ub(2);
    while (body.left() > leastHandler) {
        const Result read = readHandler(body, pool, handlers);
        if (failed(read)) return read;
    }
    return Result::done;
}

Result applyPlaceClip(const ItemContext& context, ContentReader body) {
    Pool& pool = context.movie.pool;
    Placement placement;
    placement.id = body.u16();
    placement.depth = body.u8();
    body.ub(6);
    const bool hasName = body.ub(1) != 0, hasEvents = body.ub(1) != 0;
    ClipArguments arguments;
    if (hasName && failed(copyText(pool, body.shortText(), arguments.name))) return Result::outOfMemory;
    if (hasEvents) {
        const Result read = readHandlers(body, pool, arguments.handlers);
        if (failed(read)) return read;
    }
    if (!body.ok()) return Result::badContent;
    placement.placeKey = takePlaceKey(context);
    placement.arguments = &arguments;
    DisplayObject* placed = nullptr;
    return placeCharacter(context.movie, context.timeline, placement, placed);
}

Result applyMove(const ItemContext& context, ContentReader body) {
    const std::uint8_t depth = body.u8();
    const Matrix matrix = readMatrix(body);
    if (!body.ok()) return Result::badContent;
    DisplayObject* object = objectAt(context.timeline.list, depth);
    if (!object) return Result::nothing;
    ClipInstance* clip = asClip(object);
    if (clip && clip->stepping == ClipStepping::found && clip->matrixFromScript) return Result::nothing;
    setMatrix(*object, matrix);
    if (!clip || clip->stepping != ClipStepping::fresh) return Result::done;
    clip->stepping = ClipStepping::stepped;
    return stepClip(context.movie, *clip);
}

Result applyColour(const ItemContext& context, ContentReader body) {
    const std::uint8_t depth = body.u8();
    const ColourTransform colours = readColourTransform(body, ColourTransformForm::full);
    if (!body.ok()) return Result::badContent;
    DisplayObject* object = objectAt(context.timeline.list, depth);
    const ClipInstance* clip = asClip(object);
    const bool keepsItsOwn = clip && clip->stepping == ClipStepping::found;
    if (object && !keepsItsOwn) setColours(*object, colours);
    return Result::done;
}

Result applyAlpha(const ItemContext& context, ContentReader body) {
    const std::uint8_t depth = body.u8();
    const std::uint8_t alpha = body.u8();
    if (!body.ok()) return Result::badContent;
    if (DisplayObject* object = objectAt(context.timeline.list, depth)) setAlpha(*object, alpha);
    return Result::done;
}

Result applyRatio(const ItemContext& context, ContentReader body) {
    const std::uint8_t depth = body.u8();
    const std::uint16_t ratio = body.u16();
    if (!body.ok()) return Result::badContent;
    if (DisplayObject* object = objectAt(context.timeline.list, depth)) setRatio(*object, ratio);
    return Result::done;
}

Result applyRemove(const ItemContext& context, ContentReader body) {
    const std::uint8_t depth = body.u8();
    return body.ok() ? removeObject(context.movie, context.timeline, depth) : Result::badContent;
}

Result applySound(const ItemContext& context, FrameItemType type, ContentReader body) {
    const std::uint16_t id = body.u16();
    if (!body.ok()) return Result::badContent;
    if (type == FrameItemType::startSound) return startSound(context.movie, id, context.movie.volume);
    stopSound(context.movie, id);
    return Result::done;
}

// Position 0 ends the list; positions beyond the dictionary's purge order are passed over.
Result updatePurgeOrder(const ItemContext& context, ContentReader body) {
    PoolArray<std::uint16_t>& order = context.movie.dictionary.purgeOrder;
    body.align();
    const unsigned bits = body.ub(5) + 1;
    std::uint64_t bitsLeft = std::uint64_t{body.left()} * 8 + 3;
    for (; body.ok() && bitsLeft >= 2 * bits; bitsLeft -= 2 * bits) {
        const auto id = static_cast<std::uint16_t>(body.ub(bits));
        const auto position = static_cast<std::uint8_t>(body.ub(bits));  // the low 8 bits count
        if (position == 0) break;
        if (position <= order.size()) order[position - 1u] = id;
    }
    return body.ok() ? Result::done : Result::badContent;
}

Result applyItem(const ItemContext& context, FrameItemType type, ContentReader body) {
    Movie& movie = context.movie;
    switch (type) {
        case FrameItemType::place: return applyPlace(context, body);
        case FrameItemType::remove: return applyRemove(context, body);
        case FrameItemType::colour: return applyColour(context, body);
        case FrameItemType::move: return applyMove(context, body);
        case FrameItemType::alpha: return applyAlpha(context, body);
        case FrameItemType::startSound:
        case FrameItemType::stopSound: return applySound(context, type, body);
        case FrameItemType::volume: {
            const std::uint8_t volume = body.u8();
            if (body.ok()) setVolume(movie, volume);
            return body.ok() ? Result::done : Result::badContent;
        }
        case FrameItemType::commands: return readCommands(body, movie.pool, movie.frameCommands);
        case FrameItemType::purgeOrderUpdate: return updatePurgeOrder(context, body);
        case FrameItemType::instanceNumber:
            context.timeline.nextPlacement.value = body.u16();
            return body.ok() ? Result::done : Result::badContent;
        case FrameItemType::placeClip: return applyPlaceClip(context, body);
        case FrameItemType::actions:
            if (movie.scripts.gotoMark) return Result::nothing;
            return queueActionList(movie, body.rest(), context.timeline.clip);
        case FrameItemType::ratio: return applyRatio(context, body);
    }
    return Result::nothing;  // a type that nothing reads
}

}  // namespace

Result applyFrameItems(Movie& movie, const Timeline& timeline, ContentReader items, std::uint32_t offset) {
    while (items.available(1)) {
        const ItemContext context{movie, timeline, offset + static_cast<std::uint32_t>(items.cursor())};
        const unsigned head = items.u8();
        const unsigned type = head >> 4;
        std::uint32_t length = head & longItemLength;
        if (length == longItemLength) length = items.littleEndian(itemLengthBytes(type));
        const std::span<const std::uint8_t> body = items.take(length);
        if (!items.ok()) return Result::badContent;
        const Result applied = applyItem(context, static_cast<FrameItemType>(type), ContentReader(body));
        if (failed(applied)) return applied;
        if (!spendWork(movie) && timeline.bounded) return Result::done;
    }
    return Result::done;
}

}  // namespace qel
