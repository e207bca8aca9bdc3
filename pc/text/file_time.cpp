#include "pc/text/file_time.h"

#include <cstdio>
#include <ctime>
#include <fmt/format.h>

namespace tolvenar::pc {
namespace {

constexpr std::uint64_t kTicksPerSecond = 10000000;
constexpr std::int64_t kSecondsTo1970 = 11644473600;

std::time_t SecondsOf(FileTime time) { return static_cast<std::time_t>(ToUnix(time).seconds); }

std::string Format(const std::tm& parts, char between) {
    return fmt::format("{:04}-{:02}-{:02}{}{:02}:{:02}:{:02}", parts.tm_year + 1900L,
                       parts.tm_mon + 1, parts.tm_mday, between, parts.tm_hour, parts.tm_min,
                       parts.tm_sec);
}

}  // namespace

UnixTime ToUnix(FileTime time) {
    return {static_cast<std::int64_t>(time.ticks / kTicksPerSecond) - kSecondsTo1970,
            static_cast<std::uint32_t>(time.ticks % kTicksPerSecond) * 100};
}

std::string LocalText(FileTime time) {
    const std::time_t seconds = SecondsOf(time);
    std::tm parts{};
    return time.ticks != 0 && ::localtime_r(&seconds, &parts) != nullptr ? Format(parts, ' ') : "-";
}

std::string UtcText(FileTime time) {
    const std::time_t seconds = SecondsOf(time);
    std::tm parts{};
    return time.ticks != 0 && ::gmtime_r(&seconds, &parts) != nullptr ? Format(parts, 'T') + "Z"
                                                                      : "";
}

std::optional<FileTime> ParseLocalTime(const std::string& text) {
    std::tm parts{};
    parts.tm_hour = 23;
    parts.tm_min = parts.tm_sec = 59;
    char between = ' ';
    int day_end = 0;
    int minute_end = 0;
    int end = 0;
    const int taken = std::sscanf(text.c_str(), "%4d-%2d-%2d%n%c%2d:%2d%n:%2d%n", &parts.tm_year,
                                  &parts.tm_mon, &parts.tm_mday, &day_end, &between, &parts.tm_hour,
                                  &parts.tm_min, &minute_end, &parts.tm_sec, &end);
    const int used = taken == 3 ? day_end : taken == 6 ? minute_end : taken == 7 ? end : -1;
    if (used < 0 || static_cast<std::size_t>(used) != text.size() ||
        (between != ' ' && between != 'T')) {
        return std::nullopt;
    }
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    parts.tm_isdst = -1;
    const std::tm asked = parts;
    const std::time_t seconds = std::mktime(&parts);
    // What is no day of the calendar comes back as another one.
    if (parts.tm_mday != asked.tm_mday || parts.tm_mon != asked.tm_mon ||
        parts.tm_year != asked.tm_year || seconds < -kSecondsTo1970) {
        return std::nullopt;
    }
    return FileTime{static_cast<std::uint64_t>(seconds + kSecondsTo1970) * kTicksPerSecond +
                    (kTicksPerSecond - 1)};
}

}  // namespace tolvenar::pc
