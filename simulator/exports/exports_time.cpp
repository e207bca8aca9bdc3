// The device's clock, waiting and timers.
#include <algorithm>
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/files/suspend.h"
#include "simulator/system/date_text.h"
#include "simulator/system/host_calls.h"
#include "simulator/system/settings.h"
#include "simulator/system/speed.h"

namespace {

SYSTEMTIME SystemTime(std::uint64_t ticks) {
    const sim::Moment moment = sim::MomentFromTicks(ticks);
    SYSTEMTIME time;
    time.wYear = static_cast<WORD>(moment.year);
    time.wMonth = static_cast<WORD>(moment.month);
    time.wDayOfWeek = static_cast<WORD>(moment.weekday);
    time.wDay = static_cast<WORD>(moment.day);
    time.wHour = static_cast<WORD>(moment.hour);
    time.wMinute = static_cast<WORD>(moment.minute);
    time.wSecond = static_cast<WORD>(moment.second);
    time.wMilliseconds = static_cast<WORD>(moment.milliseconds);
    return time;
}

// The platform's form of a rule: year 0, and the week in the day's place.
SYSTEMTIME SwitchTime(const sim::SwitchDay& day) {
    SYSTEMTIME time{};
    if (day.month == 0) {
        return time;
    }
    time.wMonth = static_cast<WORD>(day.month);
    time.wDayOfWeek = static_cast<WORD>(day.weekday);
    time.wDay = static_cast<WORD>(day.week);
    time.wHour = static_cast<WORD>(day.hour);
    return time;
}

void CopyName(const std::string& name, wchar_t (&out)[32]) {
    std::fill(std::begin(out), std::end(out), L'\0');
    std::copy_n(name.begin(), std::min<std::size_t>(name.size(), 31), out);
}

DWORD FillZone(TIME_ZONE_INFORMATION& info) {
    const sim::Zone zone = sim::DeviceZone(Device::Current());
    info.Bias = zone.bias_minutes;
    CopyName(zone.standard_name, info.StandardName);
    CopyName(zone.daylight_name, info.DaylightName);
    info.StandardDate = SwitchTime(zone.to_standard);
    info.DaylightDate = SwitchTime(zone.to_daylight);
    info.StandardBias = 0;
    info.DaylightBias = zone.daylight_bias_minutes;
    if (zone.to_daylight.month == 0) {
        return TIME_ZONE_ID_UNKNOWN;
    }
    return sim::IsDaylight(zone, Device::Current().NowUtc()) ? TIME_ZONE_ID_DAYLIGHT
                                                             : TIME_ZONE_ID_STANDARD;
}

// Both conversions use the bias of now, whatever the time of year converted: files written in
// winter shift by an hour in summer, as on every device.
BOOL Shift(const FILETIME* in, FILETIME* out, int sign) {
    if (in == nullptr || out == nullptr) {
        sim::SetHostError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    Device& device = Device::Current();
    const std::int64_t bias =
        sim::BiasAt(sim::DeviceZone(device), device.NowUtc()) * sim::kTicksPerMinute;
    ULARGE_INTEGER time;
    time.LowPart = in->dwLowDateTime;
    time.HighPart = in->dwHighDateTime;
    time.QuadPart += static_cast<ULONGLONG>(sign * bias);
    out->dwLowDateTime = time.LowPart;
    out->dwHighDateTime = time.HighPart;
    return TRUE;
}

// Every program of a device has this library.
const bool is_suspended = (sim::OnSuspend(&sim::files::Suspend), true);

}  // namespace

void WINAPI GetSystemTime(LPSYSTEMTIME time) {
    GatedVoid(Call::GetSystemTime, [&] { *time = SystemTime(Device::Current().NowUtc()); });
}

void WINAPI GetLocalTime(LPSYSTEMTIME time) {
    GatedVoid(Call::GetLocalTime, [&] {
        Device& device = Device::Current();
        *time = SystemTime(sim::LocalFromUtc(sim::DeviceZone(device), device.NowUtc()));
    });
}

DWORD WINAPI GetTimeZoneInformation(LPTIME_ZONE_INFORMATION info) {
    return Gated(Call::GetTimeZoneInformation, TIME_ZONE_ID_INVALID,
                 [&] { return FillZone(*info); });
}

BOOL WINAPI FileTimeToLocalFileTime(const FILETIME* utc, LPFILETIME local) {
    return Gated(Call::FileTimeToLocalFileTime, FALSE, [&] { return Shift(utc, local, -1); });
}

BOOL WINAPI LocalFileTimeToFileTime(const FILETIME* local, LPFILETIME utc) {
    return Gated(Call::LocalFileTimeToFileTime, FALSE, [&] { return Shift(local, utc, 1); });
}

DWORD WINAPI GetTickCount() {
    sim::GateEntry entry(Call::GetTickCount, false);
    entry.Decide();
    const DWORD ticks = sim::DeviceTicks();
    if (entry.traces()) {
        entry.Finish(sim::Describe(ticks));
    }
    return ticks;
}

void WINAPI Sleep(DWORD milliseconds) {
    GatedVoid(
        Call::Sleep,
        [&] { sim::host::Sleep(sim::ScaledInterval(Device::Current(), milliseconds)); },
        milliseconds);
}

UINT_PTR WINAPI SetTimer(HWND hwnd, UINT_PTR id, UINT milliseconds, TIMERPROC procedure) {
    return Gated(
        Call::SetTimer, UINT_PTR{0},
        [&]() -> UINT_PTR {
            return sim::host::SetTimer(hwnd, id,
                                       sim::ScaledInterval(Device::Current(), milliseconds),
                                       reinterpret_cast<void*>(procedure));
        },
        hwnd, id, milliseconds);
}
