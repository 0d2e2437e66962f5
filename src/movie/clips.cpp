#include "movie/clips.h"

#include <charconv>
#include <string_view>

#include "movie/frame_records.h"
#include "movie/movie.h"
#include "movie/timeline.h"
#include "script/machine.h"

namespace qel {
namespace {

// "instance" and the movie's count of such names.
Result numberClip(Movie& movie, PoolText& name) {
    constexpr std::string_view prefix = "instance";
    constexpr std::uint32_t usualRoom = 14;  // what the device takes; more digits than fit there get more
    char text[24];
    char* const digits = std::copy(prefix.begin(), prefix.end(), text);
    const std::to_chars_result end = std::to_chars(digits, std::end(text) - 1, movie.instanceCounter);
    const auto length = static_cast<std::uint32_t>(end.ptr - text);
    if (failed(name.assignZeros(movie.pool, std::max(usualRoom, length + 1)))) return Result::outOfMemory;
    std::copy(text, end.ptr, name.begin());
    ++movie.instanceCounter;
    return Result::done;
}

// Looks through the whole timeline, as far as the cycle's share of work goes.
Result listKeyFrames(Movie& movie, const Sprite& sprite, PoolArray<ClipKeyFrame>& keyFrames) {
    if (failed(keyFrames.reserve(movie.pool, sprite.keyFrameCount))) return Result::outOfMemory;
    SpriteFrame frame;
    for (std::uint32_t offset = 0; keyFrames.size() < sprite.keyFrameCount; offset = frame.end) {
        const bool found = findFrame(sprite, offset, movie.workLeft, frame);
        spendWork(movie, frame.looked);
        if (!found) break;
        const FrameHead head = readFrameHead(frame.body);
        if (head.cacheId == noCharacter || !frame.body.ok()) continue;
        keyFrames.appendReserved({.frame = head.frameNumber, .offset = frame.start});
    }
    return Result::done;
}

bool waitsFor(const ClipHandlers& handlers, ClipEvent event) {
    switch (event) {
        case ClipEvent::load: return handlers.onLoad;
        case ClipEvent::unload: return handlers.onUnload;
        case ClipEvent::frame: return handlers.onFrame;
    }
    return false;
}

bool waitsFor(const ClipHandler& handler, ClipEvent event) {
    switch (event) {
        case ClipEvent::load: return handler.onLoad;
        case ClipEvent::unload: return handler.onUnload;
        case ClipEvent::frame: return handler.onFrame;
    }
    return false;
}

}  // namespace

Result makeClip(Movie& movie, DisplayObject* owner, Sprite& sprite, ClipArguments* arguments, DisplayObject*& made) {
    PoolPtr<ClipInstance> clip = makePooled<ClipInstance>(movie.pool);
    if (!clip) return Result::outOfMemory;
    clip->kind = ObjectKind::clip;
    clip->owner = owner;
    clip->sprite = CharacterHold<Sprite>(&sprite);
    const ClipInstance* around = clipAround(*clip);
    clip->placedOnTheWay = movie.scripts.gotoMark;
    const unsigned nesting = around ? around->depth + 1u : 1u;
    if (nesting > maximumClipNesting) return Result::nothing;
    clip->depth = static_cast<std::uint16_t>(nesting);
    if (sprite.keyFrameCount != 0 && failed(listKeyFrames(movie, sprite, clip->keyFrames))) return Result::outOfMemory;
    if (arguments) {
        clip->name = std::move(arguments->name);
        clip->handlers = std::move(arguments->handlers);
    }
    if (clip->name.empty() && failed(numberClip(movie, clip->name))) return Result::outOfMemory;
    made = clip.release();
    return Result::done;
}

Result queueClipEvent(Movie& movie, ClipInstance& clip, ClipEvent event) {
    if (!waitsFor(clip.handlers, event)) return Result::done;
    for (const ClipHandler& handler : clip.handlers.list) {
        if (!waitsFor(handler, event)) continue;
        const Result queued = queueActionList(movie, handler.code.span(), &clip);
        if (failed(queued)) return queued;
    }
    return Result::done;
}

const ClipKeyFrame* keyFrameBefore(const ClipInstance& clip, std::uint16_t frame) {
    const ClipKeyFrame* last = nullptr;
    for (const ClipKeyFrame& keyFrame : clip.keyFrames)
        if (keyFrame.frame <= frame) last = &keyFrame;
    return last;
}

}  // namespace qel
