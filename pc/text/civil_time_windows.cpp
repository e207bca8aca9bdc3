#include <windows.h>

#include "pc/text/civil_time.h"

namespace tolvenar::pc {
namespace {

CivilTime PartsOf(const SYSTEMTIME& time) {
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

std::optional<SYSTEMTIME> SystemTimeOf(FileTime time) {
    const FILETIME ticks{static_cast<DWORD>(time.ticks), static_cast<DWORD>(time.ticks >> 32)};
    SYSTEMTIME parts{};
    return ::FileTimeToSystemTime(&ticks, &parts) ? std::optional(parts) : std::nullopt;
}

}  // namespace

std::optional<CivilTime> LocalPartsOf(FileTime time) {
    const std::optional<SYSTEMTIME> utc = SystemTimeOf(time);
    SYSTEMTIME local{};
    return utc && ::SystemTimeToTzSpecificLocalTime(nullptr, &*utc, &local)
               ? std::optional(PartsOf(local))
               : std::nullopt;
}

std::optional<CivilTime> UtcPartsOf(FileTime time) {
    const std::optional<SYSTEMTIME> utc = SystemTimeOf(time);
    return utc ? std::optional(PartsOf(*utc)) : std::nullopt;
}

std::optional<FileTime> FromLocalParts(const CivilTime& parts) {
    SYSTEMTIME local{};
    local.wYear = static_cast<WORD>(parts.year);
    local.wMonth = static_cast<WORD>(parts.month);
    local.wDay = static_cast<WORD>(parts.day);
    local.wHour = static_cast<WORD>(parts.hour);
    local.wMinute = static_cast<WORD>(parts.minute);
    local.wSecond = static_cast<WORD>(parts.second);
    SYSTEMTIME utc{};
    FILETIME ticks{};
    // The first only proves the day.
    if (!::SystemTimeToFileTime(&local, &ticks) ||
        !::TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc) ||
        !::SystemTimeToFileTime(&utc, &ticks)) {
        return std::nullopt;
    }
    return FileTime::Of(ticks.dwLowDateTime, ticks.dwHighDateTime);
}

}  // namespace tolvenar::pc
