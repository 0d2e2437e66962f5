#include "host/headless_platform.h"

#include <algorithm>
#include <chrono>

namespace qel {

void HeadlessPlatform::jumpTo(std::uint64_t us) { elapsedUs_ = std::max(elapsedUs_, us); }

FileHandle HeadlessPlatform::openContent(const std::string& path) {
    const auto provided = provided_.find(path);
    return files_.add(provided != provided_.end() ? makeMemoryFile(provided->second) : openLocalFile(path));
}

FileHandle HeadlessPlatform::createTemporary(std::string_view) { return files_.add(makeMemoryFile({})); }

bool HeadlessPlatform::readFile(FileHandle file, std::uint32_t offset, std::span<std::uint8_t> to) {
    File* const found = files_.find(file);
    return found && found->read(offset, to);
}

bool HeadlessPlatform::appendToFile(FileHandle file, std::span<const std::uint8_t> bytes) {
    File* const found = files_.find(file);
    return found && found->append(bytes);
}

std::uint32_t HeadlessPlatform::tickCount() {
    const auto value = static_cast<std::uint32_t>(time_.tick + elapsedMs());
    elapsedUs_ += time_.tickCostUs;
    return value;
}

Date HeadlessPlatform::date() { return dateAt(time_.startMs + static_cast<std::int64_t>(elapsedMs())); }

TimeOfDay HeadlessPlatform::timeOfDay() { return timeOfDayAt(time_.startMs + static_cast<std::int64_t>(elapsedMs())); }

void HeadlessPlatform::setTimer(std::uint32_t milliseconds) {
    timerDueUs_ = elapsedUs_ + std::uint64_t{milliseconds} * 1000;
}

Date dateAt(std::int64_t ms) {
    using namespace std::chrono;
    const year_month_day day(floor<days>(sys_time<milliseconds>(milliseconds(ms))));
    return {.year = static_cast<int>(day.year()),
            .month = static_cast<int>(static_cast<unsigned>(day.month())),
            .day = static_cast<int>(static_cast<unsigned>(day.day()))};
}

TimeOfDay timeOfDayAt(std::int64_t ms) {
    constexpr std::int64_t dayMs = 24 * 60 * 60 * 1000;
    const auto inDay = static_cast<int>(((ms % dayMs) + dayMs) % dayMs);
    return {.hour = inDay / 3600000,
            .minute = inDay / 60000 % 60,
            .second = inDay / 1000 % 60,
            .millisecond = inDay % 1000};
}

}  // namespace qel
