// The platform services: everything a player asks of the system it runs on. A host fills one record of them and points
// HostContext::services at it; no entry may be null. Services run on the player's thread and never raise events.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace qel {

struct HostContext;

struct Date {
    int year = 2000, month = 1, day = 1;  // month and day count from 1
};

struct TimeOfDay {
    int hour = 0, minute = 0, second = 0, millisecond = 0;
};

enum class SoundChannel : std::uint8_t { first = 1, second = 2 };

// A sound as it is handed to the host. The data stay where they are until the channel is stopped.
struct SoundRequest {
    SoundChannel channel = SoundChannel::first;
    std::uint16_t id = 0;     // character identifier
    std::uint8_t format = 0;  // of the definition; 8 plays on the first channel
    std::uint8_t kept = 0;    // the definition's last header byte
    std::uint16_t loops = 1;  // how often it plays
    std::uint8_t volume = 0;  // 0 to 255
    std::span<const std::uint8_t> data;
};

// Puts one stored item into the registry that is being loaded; false when it could not be kept.
using RegistryItemSink = bool (*)(void* context, std::string_view key, std::string_view value);

// How a transport request ended: 1 success, 243 and 246 two failures of their own, anything else a general failure.
// `value` is the address for resolve, the byte count for send and receive.
using TransportCallback = void (*)(void* context, int result, std::uint32_t value);

struct PlatformServices {
    // Content. Offsets count from the start of whatever reads come from: the file, or the temporary content.
    bool (*readContent)(HostContext&, std::uint32_t offset, std::uint32_t count, std::uint8_t* to);  // all or false
    bool (*createTemporaryContent)(HostContext&, std::uint32_t length);
    bool (*writeTemporaryContent)(HostContext&, std::span<const std::uint8_t> bytes);  // at most 65535 bytes
    void (*switchToTemporaryContent)(HostContext&);  // every later read comes from the temporary content

    // Clock.
    std::uint32_t (*tickCount)(HostContext&);  // milliseconds, wraps at 2^32
    Date (*date)(HostContext&);                // UTC
    TimeOfDay (*timeOfDay)(HostContext&);      // UTC
    void (*armTimer)(HostContext&,
                     std::uint32_t interval);  // milliseconds; 1 means 20; clears HostContext::skipNextTick
    void (*cancelTimer)(HostContext&);         // sets HostContext::skipNextTick

    // Memory: the general heap. Blocks are aligned for any type; null when there is none.
    void* (*allocate)(HostContext&, std::size_t size);
    void (*free)(HostContext&, void* block);  // null is allowed

    // Device.
    bool (*queryHostInformation)(HostContext&);
    bool (*rendersText)(HostContext&, std::string_view probe, int size);  // whether the device draws text itself
    std::uint8_t (*batteryLevel)(HostContext&);
    std::uint8_t (*antennaLevel)(HostContext&);
    void (*vibrate)(HostContext&, std::uint32_t milliseconds);

    // Sound.
    void (*startSound)(HostContext&, const SoundRequest&);
    void (*stopSound)(HostContext&, SoundChannel, std::int32_t id);  // -1: whatever plays
    void (*pauseSound)(HostContext&, SoundChannel);
    void (*resumeSound)(HostContext&, SoundChannel);
    void (*setSoundVolume)(HostContext&, SoundChannel, std::uint8_t volume);

    // Registries: small stores of texts. A null name is the default registry.
    bool (*loadRegistry)(HostContext&, const char* name, RegistryItemSink, void* context);
    bool (*saveRegistry)(HostContext&, const char* name, std::span<const char* const> keys,
                         std::span<const char* const> values, bool flag);
    bool (*deleteRegistry)(HostContext&, const char* name);

    // Network transport: every call returns at once and reports once through its callback.
    void (*resolveName)(HostContext&, const char* name, TransportCallback, void* context);
    void (*connect)(HostContext&, std::uint32_t address, std::uint16_t port, TransportCallback, void* context);
    void (*send)(HostContext&, std::span<const std::uint8_t> bytes, std::uint32_t timeOutMs, TransportCallback,
                 void* context);
    void (*receive)(HostContext&, std::span<std::uint8_t> buffer, TransportCallback, void* context);
    void (*closeConnection)(HostContext&);

    void (*log)(HostContext&, std::u16string_view text);
};

}  // namespace qel
