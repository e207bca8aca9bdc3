#include <ctime>

#include "pc/text/civil_time.h"

namespace tolvenar::pc {
namespace {

constexpr std::uint64_t kTicksPerSecond = 10000000;
constexpr std::int64_t kSecondsTo1970 = 11644473600;

using Split = std::tm*(const std::time_t*, std::tm*);

std::optional<CivilTime> PartsOf(FileTime time, Split* split) {
    const std::time_t seconds = static_cast<std::time_t>(ToUnix(time).seconds);
    std::tm parts{};
    if (split(&seconds, &parts) == nullptr) {
        return std::nullopt;
    }
    return CivilTime{parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                     parts.tm_hour,        parts.tm_min,     parts.tm_sec};
}

}  // namespace

std::optional<CivilTime> LocalPartsOf(FileTime time) { return PartsOf(time, ::localtime_r); }

std::optional<CivilTime> UtcPartsOf(FileTime time) { return PartsOf(time, ::gmtime_r); }

std::optional<FileTime> FromLocalParts(const CivilTime& asked) {
    std::tm parts{};
    parts.tm_year = asked.year - 1900;
    parts.tm_mon = asked.month - 1;
    parts.tm_mday = asked.day;
    parts.tm_hour = asked.hour;
    parts.tm_min = asked.minute;
    parts.tm_sec = asked.second;
    parts.tm_isdst = -1;
    const std::time_t seconds = std::mktime(&parts);
    // What is no day of the calendar comes back as another one.
    if (parts.tm_mday != asked.day || parts.tm_mon + 1 != asked.month ||
        parts.tm_year + 1900 != asked.year || seconds < -kSecondsTo1970) {
        return std::nullopt;
    }
    return FileTime{static_cast<std::uint64_t>(seconds + kSecondsTo1970) * kTicksPerSecond};
}

}  // namespace tolvenar::pc
