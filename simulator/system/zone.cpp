#include "simulator/system/zone.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace sim {
namespace {

[[noreturn]] void Refuse(const std::string& rule) {
    throw std::runtime_error("not a time zone: " + rule);
}

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

std::string TakeName(const char*& at) {
    std::string name;
    while (IsLetter(*at)) {
        name += *at++;
    }
    return name;
}

// "[+-]H[:MM]" in minutes.
int TakeOffset(const char*& at) {
    const int sign = *at == '-' ? -1 : 1;
    if (*at == '-' || *at == '+') {
        ++at;
    }
    char* end = nullptr;
    int minutes = static_cast<int>(std::strtol(at, &end, 10)) * 60;
    if (*end == ':') {
        minutes += static_cast<int>(std::strtol(end + 1, &end, 10));
    }
    at = end;
    return sign * minutes;
}

SwitchDay TakeSwitchDay(const char*& at, const std::string& rule) {
    SwitchDay day;
    int length = 0;
    if (std::sscanf(at, ",M%d.%d.%d%n", &day.month, &day.week, &day.weekday, &length) != 3) {
        Refuse(rule);
    }
    at += length;
    if (*at == '/') {
        ++at;
        day.hour = TakeOffset(at) / 60;
    }
    if (day.month < 1 || day.month > 12 || day.week < 1 || day.week > 5 || day.weekday < 0 ||
        day.weekday > 6) {
        Refuse(rule);
    }
    return day;
}

// The moment of a switch as local time of the year.
std::int64_t SwitchMoment(const SwitchDay& day, int year) {
    const std::int64_t first = DaysFromDate(year, day.month, 1);
    const std::int64_t next_month =
        day.month == 12 ? DaysFromDate(year + 1, 1, 1) : DaysFromDate(year, day.month + 1, 1);
    const auto first_weekday = static_cast<int>((first + 1) % 7);  // 1601-01-01 was a Monday
    std::int64_t days = first + (day.weekday - first_weekday + 7) % 7 + 7 * (day.week - 1);
    if (days >= next_month) {
        days -= 7;
    }
    return days * kTicksPerDay + day.hour * 60 * kTicksPerMinute;
}

int YearOf(std::int64_t ticks) { return DateFromDays(ticks / kTicksPerDay).year; }

// `standard` is the moment in the zone's standard time.
bool IsDaylightAtStandard(const Zone& zone, std::int64_t standard) {
    if (zone.to_daylight.month == 0) {
        return false;
    }
    const int year = YearOf(standard);
    const std::int64_t begin = SwitchMoment(zone.to_daylight, year);
    const std::int64_t end =
        SwitchMoment(zone.to_standard, year) + zone.daylight_bias_minutes * kTicksPerMinute;
    return begin < end ? standard >= begin && standard < end : standard >= begin || standard < end;
}

}  // namespace

Zone ParseZone(const std::string& rule) {
    Zone zone;
    const char* at = rule.c_str();
    zone.standard_name = TakeName(at);
    if (zone.standard_name.empty() || *at == '\0') {
        Refuse(rule);
    }
    zone.bias_minutes = TakeOffset(at);
    zone.daylight_name = TakeName(at);
    if (!zone.daylight_name.empty()) {
        zone.daylight_bias_minutes = *at == ',' ? -60 : TakeOffset(at) - zone.bias_minutes;
        zone.to_daylight = TakeSwitchDay(at, rule);
        zone.to_standard = TakeSwitchDay(at, rule);
    }
    if (*at != '\0') {
        Refuse(rule);
    }
    return zone;
}

bool IsDaylight(const Zone& zone, std::uint64_t utc) {
    return IsDaylightAtStandard(
        zone, static_cast<std::int64_t>(utc) - zone.bias_minutes * kTicksPerMinute);
}

int BiasAt(const Zone& zone, std::uint64_t utc) {
    return zone.bias_minutes + (IsDaylight(zone, utc) ? zone.daylight_bias_minutes : 0);
}

std::uint64_t LocalFromUtc(const Zone& zone, std::uint64_t utc) {
    return utc - static_cast<std::uint64_t>(BiasAt(zone, utc) * kTicksPerMinute);
}

std::uint64_t UtcFromLocal(const Zone& zone, std::uint64_t local) {
    const std::uint64_t standard =
        local + static_cast<std::uint64_t>(zone.bias_minutes * kTicksPerMinute);
    if (LocalFromUtc(zone, standard) == local) {
        return standard;
    }
    return standard + static_cast<std::uint64_t>(zone.daylight_bias_minutes * kTicksPerMinute);
}

// Years are counted from March, so that the leap day is a year's last.
std::int64_t DaysFromDate(int year, int month, int day) {
    const std::int64_t y = month <= 2 ? year - 1 : year;
    const std::int64_t m = month <= 2 ? month + 9 : month - 3;
    const std::int64_t days = y * 365 + y / 4 - y / 100 + y / 400 + (m * 153 + 2) / 5 + day - 1;
    constexpr std::int64_t kMarchYear0To1601 = 584694;
    return days - kMarchYear0To1601;
}

Date DateFromDays(std::int64_t days) {
    int year = static_cast<int>(days / 366) + 1601;
    while (DaysFromDate(year + 1, 1, 1) <= days) {
        ++year;
    }
    int month = 12;
    while (DaysFromDate(year, month, 1) > days) {
        --month;
    }
    return {year, month, static_cast<int>(days - DaysFromDate(year, month, 1)) + 1};
}

std::uint64_t ParseIsoTime(const std::string& text, const Zone& zone) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, length = 0;
    const int count = std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d%n", &year, &month, &day,
                                  &hour, &minute, &second, &length);
    const char* rest = text.c_str() + length;
    int milliseconds = 0;
    int more = 0;
    if (count == 6 && std::sscanf(rest, ".%3d%n", &milliseconds, &more) == 1) {
        rest += more;
    }
    const bool is_utc = *rest == 'Z';
    if (is_utc) {
        ++rest;
    }
    if (count != 6 || *rest != '\0' || year < 1601 || month < 1 || month > 12 || day < 1 ||
        day > 31 || hour > 23 || minute > 59 || second > 59) {
        throw std::runtime_error("not a time like 2003-02-28T07:30:00: " + text);
    }
    const std::int64_t ticks = DaysFromDate(year, month, day) * kTicksPerDay +
                               (hour * 60 + minute) * kTicksPerMinute + second * kTicksPerSecond +
                               milliseconds * (kTicksPerSecond / 1000);
    const auto local = static_cast<std::uint64_t>(ticks);
    return is_utc ? local : UtcFromLocal(zone, local);
}

std::string IsoTime(std::uint64_t utc) {
    const auto ticks = static_cast<std::int64_t>(utc);
    const Date date = DateFromDays(ticks / kTicksPerDay);
    const auto milliseconds = static_cast<int>(ticks % kTicksPerDay / (kTicksPerSecond / 1000));
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", date.year, date.month,
                  date.day, milliseconds / 3600000, milliseconds / 60000 % 60,
                  milliseconds / 1000 % 60, milliseconds % 1000);
    return text;
}

}  // namespace sim
