// Dates and times as text by the device's patterns ("M/d/yy", "h:mm:ss tt"), in English.
#pragma once

#include <cstdint>
#include <string>

namespace sim {

struct Moment {
    int year;
    int month;    // 1 to 12
    int weekday;  // 0 Sunday
    int day;
    int hour;
    int minute;
    int second;
    int milliseconds;
};

Moment MomentFromTicks(std::uint64_t ticks);
// None of it out of range, and the day exists.
bool IsMoment(const Moment& moment);

// Letters d, M, y and text in quotes; '' is a quote. The weekday is that of the date.
std::wstring DateText(const std::wstring& pattern, const Moment& moment);

// What a time text leaves out.
constexpr std::uint32_t kNoMinutesOrSeconds = 1;
constexpr std::uint32_t kNoSeconds = 2;
constexpr std::uint32_t kNoMarker = 4;
constexpr std::uint32_t k24Hours = 8;

struct TimeMarkers {
    std::wstring am;
    std::wstring pm;
};
// Letters h, H, m, s, t. A part that is left out takes the separator before it with it.
std::wstring TimeText(const std::wstring& pattern, const Moment& moment, std::uint32_t flags,
                      const TimeMarkers& markers);

}  // namespace sim
