#include "pc/text/file_time.h"

#include <cstdio>
#include <fmt/format.h>

#include "pc/text/civil_time.h"

namespace tolvenar::pc {
namespace {

constexpr std::uint64_t kTicksPerSecond = 10000000;
constexpr std::int64_t kSecondsTo1970 = 11644473600;

std::string Format(const CivilTime& parts, char between) {
    return fmt::format("{:04}-{:02}-{:02}{}{:02}:{:02}:{:02}", parts.year, parts.month, parts.day,
                       between, parts.hour, parts.minute, parts.second);
}

}  // namespace

UnixTime ToUnix(FileTime time) {
    return {static_cast<std::int64_t>(time.ticks / kTicksPerSecond) - kSecondsTo1970,
            static_cast<std::uint32_t>(time.ticks % kTicksPerSecond) * 100};
}

std::string LocalText(FileTime time) {
    const std::optional<CivilTime> parts = LocalPartsOf(time);
    return time.ticks != 0 && parts ? Format(*parts, ' ') : "-";
}

std::string UtcText(FileTime time) {
    const std::optional<CivilTime> parts = UtcPartsOf(time);
    return time.ticks != 0 && parts ? Format(*parts, 'T') + "Z" : "";
}

std::optional<FileTime> ParseLocalTime(const std::string& text) {
    CivilTime parts{0, 0, 0, 23, 59, 59};
    char between = ' ';
    int day_end = 0;
    int minute_end = 0;
    int end = 0;
    const int taken = std::sscanf(text.c_str(), "%4d-%2d-%2d%n%c%2d:%2d%n:%2d%n", &parts.year,
                                  &parts.month, &parts.day, &day_end, &between, &parts.hour,
                                  &parts.minute, &minute_end, &parts.second, &end);
    const int used = taken == 3 ? day_end : taken == 6 ? minute_end : taken == 7 ? end : -1;
    if (used < 0 || static_cast<std::size_t>(used) != text.size() ||
        (between != ' ' && between != 'T')) {
        return std::nullopt;
    }
    const std::optional<FileTime> first = FromLocalParts(parts);
    return first ? std::optional(FileTime{first->ticks + (kTicksPerSecond - 1)}) : std::nullopt;
}

}  // namespace tolvenar::pc
