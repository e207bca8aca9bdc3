#include "autobackup/next_occurrence.h"

#include <cstdint>

namespace tolvenar {
namespace {

constexpr std::int64_t kTicksPerSecond = 10000000;
constexpr LONG kSecondsPerDay = 86400;

}  // namespace

void AddSecondsToFileTime(const FILETIME& in, FILETIME& out, LONG seconds) {
    std::int64_t ticks = static_cast<std::int64_t>(in.dwHighDateTime) << 32 | in.dwLowDateTime;
    ticks = (ticks / kTicksPerSecond + seconds) * kTicksPerSecond;
    out.dwLowDateTime = static_cast<DWORD>(ticks);
    out.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
}

bool AddSeconds(SYSTEMTIME& time, LONG seconds) {
    FILETIME before;
    FILETIME after;
    if (!::SystemTimeToFileTime(&time, &before)) {
        return false;
    }
    AddSecondsToFileTime(before, after, seconds);
    return ::FileTimeToSystemTime(&after, &time) != FALSE;
}

bool NextOccurrence(WORD hour, WORD minute, SYSTEMTIME* start, LONG passed_seconds) {
    SYSTEMTIME time;
    ::GetLocalTime(&time);
    if (passed_seconds != 0 && !AddSeconds(time, passed_seconds)) {
        return false;
    }
    time.wSecond = 0;  // the milliseconds stay when it is today
    const bool is_ahead = time.wHour < hour || (time.wHour == hour && time.wMinute < minute);
    if (!is_ahead && !AddSeconds(time, kSecondsPerDay)) {
        return false;
    }
    time.wHour = hour;
    time.wMinute = minute;
    if (start != nullptr) {
        *start = time;
    }
    return true;
}

}  // namespace tolvenar
