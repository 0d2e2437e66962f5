#include "host/session_services.h"

#include <algorithm>
#include <cstdlib>

#include "host/session.h"

namespace qel {

// Each service finds its session through the host's record, does what the platform has for it, and tells the observer.
// What this host has no device for is accepted and answered as a device without it would.
struct SessionServices {
    static Session& session(HostContext& host) { return *static_cast<Session*>(host.owner); }
    static Platform& platform(HostContext& host) { return session(host).platform_; }
    static void notify(HostContext& host, const ServiceCall& call) { session(host).notify(call); }

    // --- content

    static bool readContent(HostContext& host, std::uint32_t offset, std::uint32_t count, std::uint8_t* to) {
        Session& self = session(host);
        const bool broken = std::ranges::count(self.options_.faults.failedReads, ++self.reads_) != 0;
        const FileHandle file = host.readFromContent ? host.contentFile : host.tempFile;
        const bool result = !broken && file != invalidFile && self.platform_.readFile(file, offset, {to, count});
        self.lastRead_ = {.offset = offset, .count = count, .expanded = !host.readFromContent, .succeeded = result};
        self.notify(calls::Read{offset, count, result});
        return result;
    }

    static bool createTemporaryContent(HostContext& host, std::uint32_t length) {
        Session& self = session(host);
        if (host.tempFile != invalidFile) self.platform_.closeFile(host.tempFile);
        host.tempFile =
            self.options_.faults.noTemporaryFile ? invalidFile : self.platform_.createTemporary(temporaryContentName);
        const bool result = host.tempFile != invalidFile;
        self.notify(calls::CreateTemporary{length, result});
        return result;
    }

    static bool writeTemporaryContent(HostContext& host, std::span<const std::uint8_t> bytes) {
        const std::span<const std::uint8_t> written = bytes.first(bytes.size() & 0xFFFF);
        notify(host, calls::WriteTemporary{static_cast<std::uint32_t>(written.size())});
        return host.tempFile != invalidFile && platform(host).appendToFile(host.tempFile, written);
    }

    static void switchToTemporaryContent(HostContext& host) {
        host.readFromContent = false;
        notify(host, calls::SwitchToTemporary{});
    }

    // --- clock

    static std::uint32_t tickCount(HostContext& host) {
        const std::uint32_t value = platform(host).tickCount();
        notify(host, calls::TickCount{value});
        return value;
    }
    static Date date(HostContext& host) {
        notify(host, calls::ReadDate{});
        return platform(host).date();
    }
    static TimeOfDay timeOfDay(HostContext& host) {
        notify(host, calls::ReadTimeOfDay{});
        return platform(host).timeOfDay();
    }

    static void armTimer(HostContext& host, std::uint32_t interval) {
        const std::uint32_t milliseconds = interval == 1 ? 20 : interval;
        host.skipNextTick = false;  // the timer whose message was to be swallowed is replaced
        platform(host).setTimer(milliseconds);
        notify(host, calls::ArmTimer{interval, milliseconds});
    }
    static void cancelTimer(HostContext& host) {
        host.skipNextTick = true;  // its message may be on the way already: the host kills the timer when it comes
        notify(host, calls::CancelTimer{});
    }

    // --- memory

    static void* allocate(HostContext& host, std::size_t size) {
        Session& self = session(host);
        const Faults& faults = self.options_.faults;
        const std::uint64_t number = ++self.allocations_;
        const bool fails = (faults.allocationsFailFrom != 0 && number >= faults.allocationsFailFrom) ||
                           std::ranges::count(faults.failedAllocations, number) != 0;
        void* block = fails ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
        self.notify(calls::Allocate{size, block != nullptr});
        return block;
    }
    static void free(HostContext& host, void* block) {
        std::free(block);
        notify(host, calls::Free{});
    }

    // --- device

    static bool queryHostInformation(HostContext& host) {
        notify(host, calls::QueryHostInformation{});
        return false;
    }
    static bool rendersText(HostContext& host, std::string_view probe, int size) {
        notify(host, calls::RendersText{probe, size});
        return false;
    }
    static std::uint8_t batteryLevel(HostContext& host) {
        notify(host, calls::BatteryLevel{});
        return 255;
    }
    static std::uint8_t antennaLevel(HostContext& host) {
        notify(host, calls::AntennaLevel{});
        return 255;
    }
    static void vibrate(HostContext& host, std::uint32_t milliseconds) { notify(host, calls::Vibrate{milliseconds}); }

    // --- sound

    static void startSound(HostContext& host, const SoundRequest& request) { notify(host, calls::StartSound{request}); }
    static void stopSound(HostContext& host, SoundChannel channel, std::int32_t id) {
        notify(host, calls::StopSound{channel, id});
    }
    static void pauseSound(HostContext& host, SoundChannel channel) { notify(host, calls::PauseSound{channel}); }
    static void resumeSound(HostContext& host, SoundChannel channel) { notify(host, calls::ResumeSound{channel}); }
    static void setSoundVolume(HostContext& host, SoundChannel channel, std::uint8_t volume) {
        notify(host, calls::SetSoundVolume{channel, volume});
    }

    // --- registries

    static bool loadRegistry(HostContext& host, const char* name, RegistryItemSink, void*) {
        notify(host, calls::LoadRegistry{name});
        return false;
    }
    static bool saveRegistry(HostContext& host, const char* name, std::span<const char* const> keys,
                             std::span<const char* const> values, bool flag) {
        notify(host, calls::SaveRegistry{name, keys, values, flag});
        return false;
    }
    static bool deleteRegistry(HostContext& host, const char* name) {
        notify(host, calls::DeleteRegistry{name});
        return false;
    }

    // --- network: requests are accepted and never completed

    using Operation = calls::Transport::Operation;
    static void resolveName(HostContext& host, const char*, TransportCallback, void*) {
        notify(host, calls::Transport{Operation::resolve});
    }
    static void connect(HostContext& host, std::uint32_t, std::uint16_t, TransportCallback, void*) {
        notify(host, calls::Transport{Operation::connect});
    }
    static void send(HostContext& host, std::span<const std::uint8_t>, std::uint32_t, TransportCallback, void*) {
        notify(host, calls::Transport{Operation::send});
    }
    static void receive(HostContext& host, std::span<std::uint8_t>, TransportCallback, void*) {
        notify(host, calls::Transport{Operation::receive});
    }
    static void closeConnection(HostContext& host) { notify(host, calls::Transport{Operation::close}); }

    static void log(HostContext& host, std::u16string_view text) {
        platform(host).log(text);
        notify(host, calls::Log{text});
    }
};

const PlatformServices sessionServices = {
    .readContent = SessionServices::readContent,
    .createTemporaryContent = SessionServices::createTemporaryContent,
    .writeTemporaryContent = SessionServices::writeTemporaryContent,
    .switchToTemporaryContent = SessionServices::switchToTemporaryContent,
    .tickCount = SessionServices::tickCount,
    .date = SessionServices::date,
    .timeOfDay = SessionServices::timeOfDay,
    .armTimer = SessionServices::armTimer,
    .cancelTimer = SessionServices::cancelTimer,
    .allocate = SessionServices::allocate,
    .free = SessionServices::free,
    .queryHostInformation = SessionServices::queryHostInformation,
    .rendersText = SessionServices::rendersText,
    .batteryLevel = SessionServices::batteryLevel,
    .antennaLevel = SessionServices::antennaLevel,
    .vibrate = SessionServices::vibrate,
    .startSound = SessionServices::startSound,
    .stopSound = SessionServices::stopSound,
    .pauseSound = SessionServices::pauseSound,
    .resumeSound = SessionServices::resumeSound,
    .setSoundVolume = SessionServices::setSoundVolume,
    .loadRegistry = SessionServices::loadRegistry,
    .saveRegistry = SessionServices::saveRegistry,
    .deleteRegistry = SessionServices::deleteRegistry,
    .resolveName = SessionServices::resolveName,
    .connect = SessionServices::connect,
    .send = SessionServices::send,
    .receive = SessionServices::receive,
    .closeConnection = SessionServices::closeConnection,
    .log = SessionServices::log,
};

}  // namespace qel
