#include "movie/timeline.h"

#include <algorithm>

#include "movie/buttons.h"
#include "movie/frame_cache.h"
#include "movie/frame_items.h"
#include "movie/frame_records.h"
#include "movie/movie.h"

namespace qel {
namespace {

// What every frame of the root timeline begins with. A key frame also empties the list: clips may be found again, the
// focus may not.
void beginRootFrame(Movie& movie, bool keyFrame) {
    movie.frameCommands.truncate(0);
    movie.target = Movie::noTarget;
    if (!keyFrame) return;
    emptyIntoKept(movie, rootTimeline(movie));
    emptyButtonList(movie);
    movie.fullRedraw = true;
}

// Keeps the items of a key frame, where its record is the one that its identifier stands for.
Result makeFrameCache(Movie& movie, const FrameHead& head, const RootFrame& frame, PoolPtr<FrameCache>& cache) {
    const std::uint32_t recordOffset = frame.bodyOffset - frameRecordHeader;
    if (!awaitsDecoding(movie.dictionary, head.cacheId, recordOffset)) return Result::done;
    cache = makeCharacter<FrameCache>(movie.pool, CharacterKind::frameCache);
    if (!cache) return Result::outOfMemory;
    ContentReader body = frame.body;
    readFrameHead(body);
    cache->frameNumber = head.frameNumber;
    cache->itemsOffset = frame.bodyOffset + frameCacheHead;
    return cache->items.assign(movie.pool, body.rest());
}

void keepFrameCache(Movie& movie, const FrameHead& head, const RootFrame& frame, PoolPtr<FrameCache> cache) {
    const auto length = static_cast<std::uint32_t>(frame.body.left());
    setCharacter(movie.dictionary, head.cacheId, frame.bodyOffset - frameRecordHeader, frameRecordHeader + length,
                 CharacterPtr(cache.release()));
}

Result stepBehindFrame(Movie& movie) {
    dropKept(movie, rootTimeline(movie));
    return stepClips(movie);
}

Result playClipFrame(Movie& movie, const Timeline& timeline, SpriteFrame& frame) {
    const FrameHead head = readFrameHead(frame.body);
    if (!frame.body.ok()) return Result::badContent;
    if (head.cacheId != noCharacter) emptyIntoKept(movie, timeline);
    const std::uint32_t offset = frame.bodyOffset + static_cast<std::uint32_t>(frame.body.cursor());
    return applyFrameItems(movie, timeline, ContentReader(frame.body.rest()), offset);
}

enum class Walk : std::uint8_t { wholeFrame, newClips };

Result stepRange(Movie& movie, DisplayObject* object, const DisplayObject* behind, Walk walk) {
    for (; object != behind; object = nextInDrawingOrder(object)) {
        ClipInstance* clip = asClip(object);
        if (!clip) continue;
        const ClipStepping stepping = std::exchange(clip->stepping, ClipStepping::due);
        const bool isNew = stepping == ClipStepping::fresh || stepping == ClipStepping::late;
        if (!isNew && (stepping != ClipStepping::due || walk != Walk::wholeFrame)) continue;
        movie.scripts.gotoMark = std::exchange(clip->placedOnTheWay, false);
        const Result stepped = stepClip(movie, *clip);
        movie.scripts.gotoMark = false;
        if (failed(stepped)) return stepped;
    }
    return Result::done;
}

}  // namespace

bool spendWork(Movie& movie, std::uint32_t amount) {
    const bool enough = movie.workLeft >= amount;
    movie.workLeft = enough ? movie.workLeft - amount : 0;
    return enough;
}

Result passRootFrame(Movie& movie, const RootFrame& frame) {
    ContentReader body = frame.body;
    const FrameHead head = readFrameHead(body);
    if (!body.ok()) return Result::badContent;
    const bool keyFrame = head.cacheId != noCharacter;
    PoolPtr<FrameCache> cache;
    beginRootFrame(movie, keyFrame);
    if (keyFrame) {
        if (movie.firstKeyFrame == noCharacter) movie.firstKeyFrame = head.cacheId;
        const Result made = makeFrameCache(movie, head, frame, cache);
        if (failed(made)) return made;
    }
    const std::uint32_t offset = frame.bodyOffset + static_cast<std::uint32_t>(body.cursor());
    const Result applied = applyFrameItems(movie, rootTimeline(movie), ContentReader(body.rest()), offset);
    if (failed(applied)) return applied;
    if (cache) keepFrameCache(movie, head, frame, std::move(cache));
    ++movie.frameIndex;
    return Result::done;
}

Result passCachedFrame(Movie& movie, const FrameCache& cache) {
    beginRootFrame(movie, true);
    movie.frameIndex = cache.frameNumber + 1u;
    return applyFrameItems(movie, rootTimeline(movie), ContentReader(cache.items.span()), cache.itemsOffset);
}

Result playRootFrame(Movie& movie, const RootFrame& frame) {
    movie.workLeft = workPerCycle;
    const Result passed = passRootFrame(movie, frame);
    return failed(passed) ? passed : stepBehindFrame(movie);
}

Result playCachedFrame(Movie& movie, const FrameCache& cache) {
    movie.workLeft = workPerCycle;
    const Result passed = passCachedFrame(movie, cache);
    return failed(passed) ? passed : stepBehindFrame(movie);
}

Result stepClip(Movie& movie, ClipInstance& clip) {
    if (!std::exchange(clip.skipFrameEvent, false)) {
        const Result queued = queueClipEvent(movie, clip, ClipEvent::frame);
        if (failed(queued)) return queued;
    }
    if (clip.stopped) return Result::done;
    const Result advanced = advanceClip(movie, clip);
    dropKept(movie, clipTimeline(clip));
    return advanced;
}

Result advanceClip(Movie& movie, ClipInstance& clip, bool bounded) {
    const Sprite& sprite = *clip.sprite;
    const Timeline timeline = clipTimeline(clip, bounded);
    if (!spendWork(movie) && bounded) return Result::done;
    if (clip.frameIndex >= sprite.frameCount) {
        clip.frameIndex = 0;
        clip.offset = 0;
        emptyIntoKept(movie, timeline);
    }
    ++clip.frameIndex;
    SpriteFrame frame;
    constexpr std::uint32_t leastLook = 64;  // a goto that has begun is always carried out
    const bool found = findFrame(sprite, clip.offset, std::max(movie.workLeft, leastLook), frame);
    clip.offset = found ? frame.end : sprite.timeline.size();
    spendWork(movie, frame.looked);
    if (!found) return Result::done;  // fewer frames than announced: it stands still
    return playClipFrame(movie, timeline, frame);
}

Result stepClips(Movie& movie) { return stepRange(movie, movie.root.first, nullptr, Walk::wholeFrame); }

Result stepNewClips(Movie& movie, ClipInstance* below) {
    if (!below) return stepRange(movie, movie.root.first, nullptr, Walk::newClips);
    return stepRange(movie, nextInDrawingOrder(below), nextInDrawingOrder(below, true), Walk::newClips);
}

}  // namespace qel
