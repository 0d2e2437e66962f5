#include "movie/sounds.h"

#include "movie/movie.h"
#include "player/engine_services.h"

namespace qel {
namespace {

constexpr SoundChannel bothChannels[] = {SoundChannel::first, SoundChannel::second};

ChannelRecord& recordOf(Movie& movie, SoundChannel channel) {
    return movie.channels[channel == SoundChannel::first ? 0 : 1];
}

// Calls `act` with every channel that is not idle.
template <class Act>
void forBusyChannels(Movie& movie, Act act) {
    for (const SoundChannel channel : bothChannels)
        if (recordOf(movie, channel).sound) act(channel);
}

void sendVolume(Movie& movie, std::uint8_t volume) {
    forBusyChannels(movie, [&](SoundChannel channel) {
        services(*movie.player).setSoundVolume(*movie.player->host, channel, volume);
    });
}

}  // namespace

Result startSound(Movie& movie, std::uint16_t id, std::uint8_t volume) {
    const Lookup found = lookupCharacter(movie.dictionary, id);
    if (found.result == Result::badContent) return Result::badContent;
    if (!found.character || found.character->kind != CharacterKind::sound) return Result::outOfMemory;
    auto& sound = static_cast<Sound&>(*found.character);
    const std::optional<SoundChannel> channel = channelOf(sound.format);
    if (!channel) return Result::done;
    ChannelRecord& record = recordOf(movie, *channel);
    // What played there stays until the host has the new sound.
    const CharacterHold<Sound> before = std::exchange(record.sound, CharacterHold<Sound>(&sound));
    record.id = id;
    services(*movie.player)
        .startSound(*movie.player->host, {.channel = *channel,
                                          .id = id,
                                          .format = sound.format,
                                          .kept = sound.kept,
                                          .loops = sound.loops,
                                          .volume = movie.muted ? std::uint8_t{0} : volume,
                                          .data = sound.data.span()});
    return Result::done;
}

void stopSound(Movie& movie, std::uint16_t id) {
    for (const SoundChannel channel : bothChannels) services(*movie.player).stopSound(*movie.player->host, channel, id);
}

void setVolume(Movie& movie, std::uint8_t volume) {
    movie.volume = volume;
    if (!movie.muted) sendVolume(movie, volume);
}

void setMute(Movie& movie, bool mute) {
    movie.muted = mute;
    sendVolume(movie, mute ? 0 : movie.volume);
}

void pauseSounds(Movie& movie) {
    forBusyChannels(movie,
                    [&](SoundChannel channel) { services(*movie.player).pauseSound(*movie.player->host, channel); });
}

void resumeSounds(Movie& movie) {
    forBusyChannels(movie,
                    [&](SoundChannel channel) { services(*movie.player).resumeSound(*movie.player->host, channel); });
}

void stopSounds(Movie& movie) {
    constexpr std::int32_t whateverPlays = -1;
    for (const SoundChannel channel : bothChannels) {
        services(*movie.player).stopSound(*movie.player->host, channel, whateverPlays);
        ChannelRecord& record = recordOf(movie, channel);
        if (record.sound) releaseCharacter(*record.sound);
        record = {};
    }
}

}  // namespace qel
