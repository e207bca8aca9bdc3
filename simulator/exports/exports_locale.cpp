// The device's locale: English as Windows CE has it, with the patterns that the settings tell.
#include <cstring>
#include <string>
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/store/utf8.h"
#include "simulator/system/date_text.h"
#include "simulator/system/host_calls.h"
#include "simulator/system/settings.h"

namespace {

constexpr LCID kEnglish = 0x409;

// What a setting tells of the locale.
constexpr struct {
    LCTYPE type;
    const char* setting;
} kTexts[] = {
    {LOCALE_S1159, "locale.am"},           {LOCALE_S2359, "locale.pm"},
    {LOCALE_SDATE, "locale.datesep"},      {LOCALE_SDECIMAL, "locale.decimal"},
    {LOCALE_SLONGDATE, "locale.longdate"}, {LOCALE_SSHORTDATE, "locale.shortdate"},
    {LOCALE_STHOUSAND, "locale.thousand"}, {LOCALE_STIME, "locale.timesep"},
    {LOCALE_STIMEFORMAT, "locale.time"},
};

std::wstring LocaleText(const char* setting) {
    return sim::Wide(sim::SettingText(Device::Current(), setting));
}

LCID DeviceLocale() {
    return static_cast<LCID>(sim::SettingNumber(Device::Current(), "locale.lcid"));
}

int Refuse(DWORD error) {
    sim::SetHostError(error);
    return 0;
}

// The number of units with the terminator; a buffer of 0 units only asks for it.
int Give(const std::wstring& text, LPWSTR buffer, int units) {
    const int needed = static_cast<int>(text.size()) + 1;
    if (units == 0) {
        return needed;
    }
    if (units < needed) {
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(buffer, text.c_str(), static_cast<std::size_t>(needed) * sizeof(wchar_t));
    return needed;
}

int GiveLocaleInfo(LCTYPE type, LPWSTR buffer, int units) {
    const LCTYPE plain = type & ~static_cast<LCTYPE>(LOCALE_NOUSEROVERRIDE);
    for (const auto& row : kTexts) {
        if (plain == row.type) {
            return Give(LocaleText(row.setting), buffer, units);
        }
    }
    return sim::host::LocaleInfo(kEnglish, type, buffer, units);
}

sim::Moment MomentOf(const SYSTEMTIME* time) {
    Device& device = Device::Current();
    if (time == nullptr) {
        return sim::MomentFromTicks(sim::LocalFromUtc(sim::DeviceZone(device), device.NowUtc()));
    }
    return {time->wYear, time->wMonth,  time->wDayOfWeek, time->wDay,
            time->wHour, time->wMinute, time->wSecond,    time->wMilliseconds};
}

int GiveDate(DWORD flags, const SYSTEMTIME* date, LPCWSTR pattern, LPWSTR buffer, int units) {
    constexpr DWORD kForms = DATE_SHORTDATE | DATE_LONGDATE;
    if ((pattern != nullptr && (flags & kForms) != 0) || (flags & kForms) == kForms) {
        return Refuse(ERROR_INVALID_FLAGS);
    }
    sim::Moment moment = MomentOf(date);
    moment.hour = moment.minute = moment.second = 0;
    if (!sim::IsMoment(moment)) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    const std::wstring used =
        pattern != nullptr
            ? std::wstring(pattern)
            : LocaleText((flags & DATE_LONGDATE) != 0 ? "locale.longdate" : "locale.shortdate");
    return Give(sim::DateText(used, moment), buffer, units);
}

int GiveTime(DWORD flags, const SYSTEMTIME* time, LPCWSTR pattern, LPWSTR buffer, int units) {
    sim::Moment moment = MomentOf(time);
    moment.year = 2000;
    moment.month = moment.day = 1;
    if (!sim::IsMoment(moment)) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    const std::wstring used =
        pattern != nullptr ? std::wstring(pattern) : LocaleText("locale.time");
    const sim::TimeMarkers markers{LocaleText("locale.am"), LocaleText("locale.pm")};
    return Give(sim::TimeText(used, moment, flags, markers), buffer, units);
}

}  // namespace

int WINAPI GetLocaleInfoW(LCID locale, LCTYPE type, LPWSTR buffer, int units) {
    return Gated(
        Call::GetLocaleInfoW, 0, [&] { return GiveLocaleInfo(type, buffer, units); }, locale, type);
}

int WINAPI GetDateFormatW(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCWSTR pattern,
                          LPWSTR buffer, int units) {
    return Gated(
        Call::GetDateFormatW, 0, [&] { return GiveDate(flags, date, pattern, buffer, units); },
        locale, flags, pattern);
}

int WINAPI GetTimeFormatW(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR pattern,
                          LPWSTR buffer, int units) {
    return Gated(
        Call::GetTimeFormatW, 0, [&] { return GiveTime(flags, time, pattern, buffer, units); },
        locale, flags, pattern);
}

LCID WINAPI GetSystemDefaultLCID() {
    return Gated(Call::GetSystemDefaultLCID, LCID{0}, [] { return DeviceLocale(); });
}

LCID WINAPI GetUserDefaultLCID() {
    return Gated(Call::GetUserDefaultLCID, LCID{0}, [] { return DeviceLocale(); });
}

BOOL WINAPI IsValidLocale(LCID locale, DWORD flags) {
    return Gated(
        Call::IsValidLocale, FALSE, [&]() -> BOOL { return sim::host::IsInstalledLocale(locale); },
        locale, flags);
}

BOOL WINAPI IsValidCodePage(UINT code_page) {
    return Gated(
        Call::IsValidCodePage, FALSE,
        [&]() -> BOOL { return sim::host::IsInstalledCodePage(code_page); }, code_page);
}
