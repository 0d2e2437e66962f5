#include "movie/gotos.h"

#include <algorithm>

#include "movie/buttons.h"
#include "movie/frame_cache.h"
#include "movie/movie.h"
#include "movie/record_header.h"
#include "movie/timeline.h"
#include "player/engine_services.h"

namespace qel {
namespace {

// A failure that a goto ends playback with; a key frame that is broken is as good as none.
Result lookupFrameCache(Movie& movie, std::uint16_t cacheId, CharacterHold<FrameCache>& cache) {
    const Lookup found = lookupCharacter(movie.dictionary, cacheId);
    if (found.character && found.character->kind == CharacterKind::frameCache)
        cache = CharacterHold<FrameCache>(static_cast<FrameCache*>(found.character.get()));
    return failed(found.result) && found.result != Result::brokenDefinition ? found.result : Result::done;
}

// Where reading goes on behind a cached frame.
std::uint32_t endOf(const FrameCache& cache) { return cache.itemsOffset + cache.items.size(); }

void readOnAt(Movie& movie, std::uint32_t offset) {
    movie.reader = ContentReader();
    movie.position = offset;
}

// The frame records of the root timeline from an offset of the content on.
struct FrameFinder {
    static constexpr std::size_t bufferSize = 1024;

    Movie& movie;
    std::uint32_t offset = 0;  // of the next record
    std::array<std::uint8_t, bufferSize> buffer{};
    std::uint32_t bufferOffset = 0;      // of the buffer's bytes in the content
    std::size_t held = 0;                // bytes in the buffer
    PoolArray<std::uint8_t> longBody{};  // of a frame that the buffer cannot hold
};

// What the buffer holds from the next record on.
ContentReader heldBytes(const FrameFinder& finder) {
    const std::span<const std::uint8_t> bytes{finder.buffer.data(), finder.held};
    const std::uint32_t begin = finder.offset - finder.bufferOffset;
    return ContentReader(finder.offset >= finder.bufferOffset && begin <= bytes.size() ? bytes.subspan(begin)
                                                                                       : bytes.first(0));
}

// Reads what lies at the finder's offset, as much as the buffer holds. `nothing` at the end of the content.
Result fillBuffer(FrameFinder& finder) {
    const PlayerInstance& player = *finder.movie.player;
    if (finder.offset >= player.contentLength) return Result::nothing;
    finder.held = std::min<std::size_t>(finder.buffer.size(), player.contentLength - finder.offset);
    finder.bufferOffset = finder.offset;
    return readContent(player, finder.offset, {finder.buffer.data(), finder.held}) ? Result::done : Result::badContent;
}

// Reads the header of the next record. `nothing`: the timeline ends there.
Result scanNext(FrameFinder& finder, ScannedRecord& record) {
    if (!scanRecord(heldBytes(finder), record)) {
        const Result filled = fillBuffer(finder);
        if (filled != Result::done) return filled;
        if (!scanRecord(heldBytes(finder), record)) return Result::nothing;
    }
    const bool beyond = finder.offset + record.header.length() > finder.movie.player->contentLength;
    return beyond || RecordType{record.header.type} == RecordType::end ? Result::nothing : Result::done;
}

Result readBody(FrameFinder& finder, const RecordHeader& header, RootFrame& frame) {
    if (heldBytes(finder).left() < header.length() && header.length() <= FrameFinder::bufferSize) {
        const Result filled = fillBuffer(finder);
        if (filled != Result::done) return Result::badContent;
    }
    ContentReader reader = heldBytes(finder);
    reader.skip(header.headerLength);
    if (reader.available(header.bodyLength)) {
        frame.body = reader.section(header.bodyLength);
        return Result::done;
    }
    if (failed(finder.longBody.assignZeros(finder.movie.pool, header.bodyLength))) return Result::outOfMemory;
    if (!readContent(*finder.movie.player, frame.bodyOffset, finder.longBody.span())) return Result::badContent;
    frame.body = ContentReader(finder.longBody.span());
    return Result::done;
}

// Finds the next frame; definitions on the way are registered. `nothing`: the timeline ends first.
Result findNext(FrameFinder& finder, RootFrame& frame) {
    for (;;) {
        ScannedRecord record;
        const Result scanned = scanNext(finder, record);
        if (scanned != Result::done) return scanned;
        const auto length = static_cast<std::uint32_t>(record.header.length());
        if (record.id != noCharacter)
            registerCharacter(finder.movie.dictionary, record.id, definedKind(record.header.type), finder.offset,
                              length);
        frame.bodyOffset = finder.offset + record.header.headerLength;
        const bool isFrame = RecordType{record.header.type} == RecordType::frame;
        const Result read = isFrame ? readBody(finder, record.header, frame) : Result::done;
        if (failed(read)) return read;
        finder.offset += length;
        if (isFrame) return Result::done;
    }
}

// The last key frame that is not behind `frame`; null: the movie names none.
const KeyFrameEntry* keyFrameBefore(const Movie& movie, std::uint16_t frame) {
    const KeyFrameEntry* last = nullptr;
    for (const KeyFrameEntry& entry : movie.scripts.keyFrames)
        if (entry.frame <= frame) last = &entry;
    return last;
}

// The state that the way begins with: a key frame, or the empty stage in front of the first frame. `nothing`: the
// key frame cannot be had.
Result beginWay(Movie& movie, std::uint16_t frame, FrameFinder& finder) {
    const KeyFrameEntry* entry = keyFrameBefore(movie, frame);
    if (!entry) {
        emptyIntoKept(movie, rootTimeline(movie));
        emptyButtonList(movie);
        movie.frameIndex = 0;
        finder.offset = movie.firstFramePosition;
        return Result::done;
    }
    CharacterHold<FrameCache> cache;
    const Result found = lookupFrameCache(movie, entry->cacheId, cache);
    if (failed(found) || !cache) return failed(found) ? found : Result::nothing;
    rememberFocus(movie);
    movie.scripts.gotoMark = cache->frameNumber != frame;
    finder.offset = endOf(*cache);
    return passCachedFrame(movie, *cache);
}

// The frames of a way follow one another: what one of them has placed or found is nothing new to the next.
void endFrameOfWay(const DisplayList& list) {
    for (DisplayObject* object = list.first; object; object = object->next) {
        ClipInstance* clip = asClip(object);
        if (!clip) continue;
        const bool awaitsItsFirst = clip->stepping == ClipStepping::fresh || clip->stepping == ClipStepping::late;
        clip->stepping = awaitsItsFirst ? ClipStepping::late : ClipStepping::due;
    }
}

Result passFramesUpTo(Movie& movie, std::uint16_t frame, FrameFinder& finder) {
    while (movie.frameIndex <= frame) {
        RootFrame next;
        const Result found = findNext(finder, next);
        if (found != Result::done) return failed(found) ? found : Result::done;
        movie.scripts.gotoMark = movie.frameIndex != frame;
        endFrameOfWay(movie.root);
        const Result passed = passRootFrame(movie, next);
        if (failed(passed)) return passed;
    }
    return Result::done;
}

Result passClipFrames(Movie& movie, ClipInstance& clip, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) {
        movie.scripts.gotoMark = i + 1 != count;
        endFrameOfWay(clip.children);
        const Result advanced = advanceClip(movie, clip, false);
        if (failed(advanced)) return advanced;
    }
    return Result::done;
}

}  // namespace

Result gotoKeyFrame(Movie& movie, std::uint16_t cacheId) {
    CharacterHold<FrameCache> cache;
    const Result found = lookupFrameCache(movie, cacheId, cache);
    if (failed(found) || !cache) return failed(found) ? found : Result::nothing;
    movie.gotoFrame = std::move(cache);
    movie.state.enter(Phase::play, PlayStep::cachedFrame);
    if (std::exchange(movie.state.rootStopped, false)) movie.pacing.resynchronise = true;
    movie.state.gotoPerformed = true;
    return Result::done;
}

Result playGotoFrame(Movie& movie) {
    const CharacterHold<FrameCache> cache = std::move(movie.gotoFrame);
    if (!cache) return Result::done;
    rememberFocus(movie);
    readOnAt(movie, endOf(*cache));
    return playCachedFrame(movie, *cache);
}

Result gotoRootFrame(Movie& movie, std::uint16_t frame) {
    if (frame >= movie.header.frameCount || movie.workLeft == 0) return Result::nothing;
    FrameFinder finder{.movie = movie};
    Result result = beginWay(movie, frame, finder);
    if (result == Result::nothing) return result;
    if (!failed(result)) result = passFramesUpTo(movie, frame, finder);
    movie.scripts.gotoMark = false;
    if (failed(result)) return result;
    readOnAt(movie, finder.offset);
    dropKept(movie, rootTimeline(movie));
    movie.fullRedraw = true;
    return stepNewClips(movie);
}

Result gotoClipFrame(Movie& movie, ClipInstance& clip, std::uint16_t frame) {
    if (frame >= clip.sprite->frameCount || movie.workLeft == 0) return Result::nothing;
    const ClipKeyFrame* keyFrame = keyFrameBefore(clip, frame);
    clip.frameIndex = keyFrame ? keyFrame->frame : std::uint16_t{0};
    clip.offset = keyFrame ? keyFrame->offset : 0;
    const std::uint32_t frames = frame - clip.frameIndex + 1u;
    clip.stopped = false;
    emptyIntoKept(movie, clipTimeline(clip));
    const Result passed = passClipFrames(movie, clip, frames);
    movie.scripts.gotoMark = false;
    dropKept(movie, clipTimeline(clip));
    movie.fullRedraw = true;
    return failed(passed) ? passed : stepNewClips(movie, &clip);
}

}  // namespace qel
