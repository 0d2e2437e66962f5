// Who looks over a session's shoulder: reports, frame capture, recordings. An observer sees every event before the host
// acts on it, and every service call with what it answered.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include "player/host_context.h"
#include "player/services.h"

namespace qel {

// One service call each. Pointers, texts and spans are good for the time of the notification.
namespace calls {

struct Read {
    std::uint32_t offset = 0, count = 0;
    bool result = false;
};
struct CreateTemporary {
    std::uint32_t length = 0;  // bytes that the content announces
    bool result = false;
};
struct WriteTemporary {
    std::uint32_t count = 0;
};
struct SwitchToTemporary {};
struct TickCount {
    std::uint32_t value = 0;
};
struct ReadDate {};
struct ReadTimeOfDay {};
struct ArmTimer {
    std::uint32_t interval = 0;      // as the player asked
    std::uint32_t milliseconds = 0;  // as set
};
struct CancelTimer {};
struct Allocate {
    std::size_t size = 0;
    bool result = false;
};
struct Free {};
struct QueryHostInformation {};
struct RendersText {
    std::string_view probe;
    int size = 0;
};
struct BatteryLevel {};
struct AntennaLevel {};
struct Vibrate {
    std::uint32_t milliseconds = 0;
};
struct StartSound {
    SoundRequest request;
};
struct StopSound {
    SoundChannel channel;
    std::int32_t id = 0;
};
struct PauseSound {
    SoundChannel channel;
};
struct ResumeSound {
    SoundChannel channel;
};
struct SetSoundVolume {
    SoundChannel channel;
    std::uint8_t volume = 0;
};
struct LoadRegistry {
    const char* name = nullptr;  // null: the default registry
};
struct SaveRegistry {
    const char* name = nullptr;
    std::span<const char*const> keys, values;
    bool flag = false;
};
struct DeleteRegistry {
    const char* name = nullptr;
};
struct Transport {
    enum class Operation : std::uint8_t { resolve, connect, send, receive, close } operation;
};
struct Log {
    std::u16string_view text;
};

}  // namespace calls

using ServiceCall =
    std::variant<calls::Read, calls::CreateTemporary, calls::WriteTemporary, calls::SwitchToTemporary, calls::TickCount,
                 calls::ReadDate, calls::ReadTimeOfDay, calls::ArmTimer, calls::CancelTimer, calls::Allocate,
                 calls::Free, calls::QueryHostInformation, calls::RendersText, calls::BatteryLevel, calls::AntennaLevel,
                 calls::Vibrate, calls::StartSound, calls::StopSound, calls::PauseSound, calls::ResumeSound,
                 calls::SetSoundVolume, calls::LoadRegistry, calls::SaveRegistry, calls::DeleteRegistry,
                 calls::Transport, calls::Log>;

struct EventNotice {
    HostEvent event;
    std::uint32_t argument = 0;
    std::uintptr_t value =
        0;  // as HostEvent says: a number, or a pointer that is good for the time of the notification
};

// Observers must not throw: the player is on the call stack. They may call Session::end, and no operation.
class SessionObserver {
  public:
    virtual ~SessionObserver() = default;
    virtual void eventRaised(const EventNotice&) {}
    virtual void serviceCalled(const ServiceCall&) {}
};

}  // namespace qel
