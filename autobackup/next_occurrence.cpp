#include "autobackup/next_occurrence.h"

#include <cstdint>

namespace tolvenar {
namespace {

constexpr std::int64_t kTicksPerSecond = 10000000;
constexpr LONG kSecondsPerDay = 86400;

// Moves a local time to the same time of the next day, month and year ends included.
bool AddOneDay(SYSTEMTIME& time) {
    FILETIME today;
    FILETIME tomorrow;
    if (!::SystemTimeToFileTime(&time, &today)) {
        return false;
    }
    AddSecondsToFileTime(today, tomorrow, kSecondsPerDay);
    return ::FileTimeToSystemTime(&tomorrow, &time) != FALSE;
}

}  // namespace

void AddSecondsToFileTime(const FILETIME& in, FILETIME& out, LONG seconds) {
    std::int64_t ticks = static_cast<std::int64_t>(in.dwHighDateTime) << 32 | in.dwLowDateTime;
    ticks = (ticks / kTicksPerSecond + seconds) * kTicksPerSecond;
    out.dwLowDateTime = static_cast<DWORD>(ticks);
    out.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
}

bool NextOccurrence(WORD hour, WORD minute, SYSTEMTIME* start) {
    SYSTEMTIME time;
    ::GetLocalTime(&time);
    time.wSecond = 0;  // the milliseconds stay when it is today
    const bool is_ahead = time.wHour < hour || (time.wHour == hour && time.wMinute < minute);
    if (!is_ahead && !AddOneDay(time)) {
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
