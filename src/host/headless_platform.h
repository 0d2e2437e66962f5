// A platform without window and without waiting: time is virtual and moves only when it is read or made to jump, so a
// run comes out the same every time. Expanded content is kept in memory.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/files.h"
#include "host/platform.h"

namespace qel {

struct VirtualTime {
    std::uint32_t tick = 0;               // what the tick count starts at, milliseconds
    std::uint64_t tickCostUs = 10;        // what one reading of the tick count takes, at least 1
    std::int64_t startMs = 946684800000;  // date and time at the start, in milliseconds since 1970-01-01 (UTC)
};

class HeadlessPlatform : public Platform {
  public:
    explicit HeadlessPlatform(const VirtualTime& time = {}) : time_(time) {}

    // Content that is opened by this path from now on instead of a file.
    void provideContent(const std::string& path, std::vector<std::uint8_t> bytes) {
        provided_[path] = std::move(bytes);
    }

    // The virtual clock, since the platform was made.
    std::uint64_t elapsedUs() const { return elapsedUs_; }
    std::uint64_t elapsedMs() const { return elapsedUs_ / 1000; }
    void jumpTo(std::uint64_t us);  // never backwards
    std::optional<std::uint64_t> timerDueUs() const { return timerDueUs_; }

    FileHandle openContent(const std::string& path) override;
    FileHandle createTemporary(std::string_view name) override;
    bool readFile(FileHandle file, std::uint32_t offset, std::span<std::uint8_t> to) override;
    bool appendToFile(FileHandle file, std::span<const std::uint8_t> bytes) override;
    void closeFile(FileHandle file) override { files_.close(file); }

    std::uint32_t tickCount() override;
    Date date() override;
    TimeOfDay timeOfDay() override;
    void setTimer(std::uint32_t milliseconds) override;
    void killTimer() override { timerDueUs_.reset(); }

    bool present(const FrameRecord&, std::span<std::uint8_t>) override { return true; }
    void log(std::u16string_view) override {}

  private:
    VirtualTime time_;
    std::uint64_t elapsedUs_ = 0;
    std::optional<std::uint64_t> timerDueUs_;
    std::map<std::string, std::vector<std::uint8_t>> provided_;
    FileTable files_;
};

// The calendar at a moment, in milliseconds since 1970-01-01 (UTC).
Date dateAt(std::int64_t ms);
TimeOfDay timeOfDayAt(std::int64_t ms);

}  // namespace qel
