#include "script/frame_navigation.h"

#include "movie/gotos.h"
#include "movie/movie.h"
#include "player/engine_services.h"
#include "script/script_state.h"

namespace qel {

std::uint32_t currentFrameOf(const Movie& movie, const Target& target) {
    const ClipInstance* clip = target.clip();
    return clip ? clip->frameIndex : movie.frameIndex;
}

std::uint32_t frameCountOf(const Movie& movie, const Target& target) {
    const ClipInstance* clip = target.clip();
    return clip ? clip->sprite->frameCount : movie.header.frameCount;
}

std::int32_t labelFrame(const Movie& movie, const Target& target, std::string_view label) {
    if (const ClipInstance* clip = target.clip()) {
        for (const SpriteLabel& each : clip->sprite->labels)
            if (label == each.text.data()) return each.frame;
        return -1;
    }
    for (const LabelEntry& each : movie.scripts.labels)
        if (label == each.label.begin()) return each.frame;
    return -1;
}

void setStopped(Movie& movie, const Target& target, bool stopped) {
    if (target.isGone()) return;
    if (ClipInstance* clip = target.clip()) {
        clip->stopped = stopped;
        return;
    }
    movie.state.rootStopped = stopped;
    movie.pacing.resynchronise = true;
}

void gotoFrame(Movie& movie, const Target& target, double frame, AfterGoto after) {
    if (target.isGone()) return;
    const double count = frameCountOf(movie, target);
    if (!(frame >= 1 && frame <= count)) return;
    const auto index = static_cast<std::uint32_t>(frame) - 1;
    if (index + 1 != currentFrameOf(movie, target)) {
        ClipInstance* clip = target.clip();
        const auto to = static_cast<std::uint16_t>(index);
        const Result gone = clip ? gotoClipFrame(movie, *clip, to) : gotoRootFrame(movie, to);
        if (failed(gone)) failRun(movie.scripts, gone);
        movie.scripts.redraw = true;
    }
    setStopped(movie, target, after == AfterGoto::stop);
}

void stopAllSounds(Movie& movie) {
    for (const SoundChannel channel : {SoundChannel::first, SoundChannel::second})
        if (movie.channels[channel == SoundChannel::first ? 0 : 1].sound)
            services(*movie.player).setSoundVolume(*movie.player->host, channel, 0);
}

}  // namespace qel
