#include "movie/timeline.h"

#include "format/frame_items.h"
#include "movie/movie.h"
#include "movie/record_header.h"
#include "movie/structures.h"

namespace qel {
namespace {

// The identity of the placement whose item lies at `offset`. A given number is used up.
std::uint32_t takePlaceKey(const Timeline& timeline, std::uint32_t offset) {
    const std::uint16_t given = std::exchange(timeline.nextPlacement.value, PlacementNumber::none);
    return given != PlacementNumber::none ? given : offset;
}

Result applyPlace(Movie& movie, const Timeline& timeline, ContentReader body, std::uint32_t offset) {
    const std::uint16_t id = body.u16();
    const std::uint8_t depth = body.u8();
    if (!body.ok()) return Result::badContent;
    return placeCharacter(movie, timeline, id, depth, takePlaceKey(timeline, offset));
}

Result applyMove(Movie& movie, const Timeline& timeline, ContentReader body) {
    const std::uint8_t depth = body.u8();
    const Matrix matrix = readMatrix(body);
    if (!body.ok()) return Result::badContent;
    DisplayObject* object = objectAt(timeline.list, depth);
    if (!object) return Result::nothing;
    const Result moved = setMatrix(movie, *object, matrix);
    ClipInstance* clip = asClip(object);
    if (failed(moved) || !clip || clip->stepping != ClipStepping::fresh) return moved;
    clip->stepping = ClipStepping::stepped;
    return stepClip(movie, *clip);
}

Result applyItem(Movie& movie, const Timeline& timeline, FrameItemType type, ContentReader body, std::uint32_t offset) {
    switch (type) {
        case FrameItemType::place:
        case FrameItemType::placeClip: return applyPlace(movie, timeline, body, offset);
        case FrameItemType::remove: {
            const std::uint8_t depth = body.u8();
            if (!body.ok()) return Result::badContent;
            removeObject(movie, timeline, depth);
            return Result::done;
        }
        case FrameItemType::move: return applyMove(movie, timeline, body);
        case FrameItemType::instanceNumber:
            timeline.nextPlacement.value = body.u16();
            return body.ok() ? Result::done : Result::badContent;
        default: return Result::nothing;  // items that change nothing that is shown
    }
}

// A key frame rebuilds its list from nothing; clips may be found again.
void beginKeyFrame(Movie& movie, const Timeline& timeline) {
    emptyIntoKept(movie, timeline);
    if (!timeline.clip) movie.fullRedraw = true;
}

Result playFrame(Movie& movie, const Timeline& timeline, ContentReader body, std::uint32_t offset) {
    const FrameHead head = readFrameHead(body);
    if (!body.ok()) return Result::badContent;
    if (head.cacheId != noCharacter) beginKeyFrame(movie, timeline);
    const auto itemsOffset = offset + static_cast<std::uint32_t>(body.cursor());
    const Result applied = applyFrameItems(movie, timeline, ContentReader(body.rest()), itemsOffset);
    clearList(timeline.kept);
    return applied;
}

// Finds the frame record at or behind `offset` of a sprite's timeline; other records are passed over. False at the end.
bool findFrame(const Sprite& sprite, std::uint32_t offset, std::uint32_t& bodyOffset, std::uint32_t& bodyLength) {
    ContentReader reader(sprite.timeline.span());
    reader.seek(offset);
    RecordHeader header;
    while (readRecordHeader(reader, header) && reader.available(header.bodyLength)) {
        bodyOffset = static_cast<std::uint32_t>(reader.cursor());
        bodyLength = header.bodyLength;
        if (RecordType{header.type} == RecordType::frame) return true;
        reader.skip(header.bodyLength);
    }
    return false;
}

}  // namespace

FrameHead readFrameHead(ContentReader& body) {
    FrameHead head;
    head.cacheId = body.u16();
    if (head.cacheId != noCharacter) head.frameNumber = body.u16();
    return head;
}

Result applyFrameItems(Movie& movie, const Timeline& timeline, ContentReader items, std::uint32_t offset) {
    while (items.available(1)) {
        const std::uint32_t itemOffset = offset + static_cast<std::uint32_t>(items.cursor());
        const unsigned head = items.u8();
        const unsigned type = head >> 4;
        std::uint32_t length = head & longItemLength;
        if (length == longItemLength) length = items.littleEndian(itemLengthBytes(type));
        const std::span<const std::uint8_t> body = items.take(length);
        if (!items.ok()) return Result::badContent;
        const Result applied =
            applyItem(movie, timeline, static_cast<FrameItemType>(type), ContentReader(body), itemOffset);
        if (failed(applied)) return applied;
    }
    return Result::done;
}

Result playRootFrame(Movie& movie, ContentReader body, std::uint32_t offset) {
    const Result played = playFrame(movie, rootTimeline(movie), body, offset);
    if (failed(played)) return played;
    ++movie.frameIndex;
    return stepClips(movie);
}

Result stepClip(Movie& movie, ClipInstance& clip) {
    const Sprite& sprite = *clip.sprite;
    if (clip.frameIndex >= sprite.frameCount) {
        clip.frameIndex = 0;
        clip.offset = 0;
        emptyIntoKept(movie, clipTimeline(clip));
    }
    ++clip.frameIndex;
    std::uint32_t bodyOffset = 0, bodyLength = 0;
    if (!findFrame(sprite, clip.offset, bodyOffset, bodyLength)) {
        // Fewer frames than announced: the clip stands still until it wraps.
        clearList(clip.kept);
        return Result::done;
    }
    clip.offset = bodyOffset + bodyLength;
    const ContentReader body(sprite.timeline.span().subspan(bodyOffset, bodyLength));
    return playFrame(movie, clipTimeline(clip), body, bodyOffset);
}

Result stepClips(Movie& movie) {
    for (DisplayObject* object = movie.root.first; object; object = nextInDrawingOrder(object)) {
        ClipInstance* clip = asClip(object);
        if (!clip) continue;
        const ClipStepping stepping = std::exchange(clip->stepping, ClipStepping::due);
        if (stepping == ClipStepping::stepped) continue;
        const Result stepped = stepClip(movie, *clip);
        if (failed(stepped)) return stepped;
    }
    return Result::done;
}

}  // namespace qel
