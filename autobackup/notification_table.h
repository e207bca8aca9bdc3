// The notifications that start automatic backups. All run the agent; the arguments name the reason.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

// Found by the platform on its search path, so it has no folder.
constexpr wchar_t kAgentProgram[] = L"kestrin_tolvenar_agent.exe";

constexpr wchar_t kRunAfterTimeChange[] = L"TolvenarRunAfterTimeChange";
constexpr wchar_t kRunAfterTzChange[] = L"TolvenarRunAfterTzChange";
constexpr wchar_t kRunAtAcPowerOff[] = L"TolvenarRunAtAcPowerOff";
constexpr wchar_t kRunAfterWakeup[] = L"TolvenarRunAfterWakeup";
constexpr wchar_t kRunAtTime[] = L"TolvenarRunAtTime";

// A row is registered when a setting shares a bit with its mask.
struct NotificationRow {
    DWORD trigger_type;
    DWORD event;
    const wchar_t* arguments;
    DWORD on_time_mask;
    DWORD on_battery_mask;
};

// The time-zone row is removed and recognised but never registered (docs/oddities.md, 28). The
// daily time serves the battery setting too, as a battery check once a day.
constexpr NotificationRow kAutoBackupNotificationTable[] = {
    {CNT_EVENT, NOTIFICATION_EVENT_TIME_CHANGE, kRunAfterTimeChange, 1, 1},
    {CNT_EVENT, NOTIFICATION_EVENT_TZ_CHANGE, kRunAfterTzChange, 0, 0},
    {CNT_EVENT, NOTIFICATION_EVENT_OFF_AC_POWER, kRunAtAcPowerOff, 0, 1},
    {CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, kRunAfterWakeup, 0, 1},
    {CNT_TIME, NOTIFICATION_EVENT_NONE, kRunAtTime, 1, 1},
};

}  // namespace tolvenar
