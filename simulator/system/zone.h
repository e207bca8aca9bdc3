// Time zones and calendar dates of a device, without the host's: a zone is a POSIX rule such as
// "CET-1CEST,M3.5.0/2,M10.5.0/3" (week 5: the last of the month) or "UTC0".
#pragma once

#include <cstdint>
#include <string>

namespace sim {

// Times are FILETIME counts: 100 ns since 1601.
constexpr std::int64_t kTicksPerSecond = 10000000;
constexpr std::int64_t kTicksPerMinute = 60 * kTicksPerSecond;
constexpr std::int64_t kTicksPerDay = 24 * 60 * kTicksPerMinute;

// The nth weekday of a month (0 Sunday; n 5: the last), `hour`:00 in the time that ends then.
struct SwitchDay {
    int month = 0;  // 0: the zone has no daylight saving
    int week = 0;
    int weekday = 0;
    int hour = 2;
};

struct Zone {
    std::string standard_name;
    std::string daylight_name;
    int bias_minutes = 0;           // UTC = local + bias, in standard time
    int daylight_bias_minutes = 0;  // added to it in daylight time
    SwitchDay to_daylight;
    SwitchDay to_standard;
};

// Throws std::runtime_error when `rule` is none.
Zone ParseZone(const std::string& rule);

bool IsDaylight(const Zone& zone, std::uint64_t utc);
// Minutes to add to local time for UTC at the moment `utc`.
int BiasAt(const Zone& zone, std::uint64_t utc);
std::uint64_t LocalFromUtc(const Zone& zone, std::uint64_t utc);
// An hour that happens twice is taken as standard time.
std::uint64_t UtcFromLocal(const Zone& zone, std::uint64_t local);

// Days from 1601-01-01; month and day from 1.
std::int64_t DaysFromDate(int year, int month, int day);
struct Date {
    int year;
    int month;
    int day;
};
Date DateFromDays(std::int64_t days);

// "2003-02-28T07:30:00[.mmm][Z]"; without Z it is local time of `zone`. Throws std::runtime_error.
std::uint64_t ParseIsoTime(const std::string& text, const Zone& zone);
// As UTC, "2003-02-28T07:30:00.000Z".
std::string IsoTime(std::uint64_t utc);

}  // namespace sim
