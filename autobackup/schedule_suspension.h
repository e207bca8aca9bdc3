// The schedule is taken off around every operation. A process may end in between; the next start
// puts the schedule back then.
#pragma once

#include <cstdint>

#include "platform/unique_resource.h"

namespace tolvenar {

// The schedule as it was before an operation: raw values, kSettingAbsent for one that was missing.
struct SavedSchedule {
    SavedSchedule();
    std::uint32_t on_time;
    std::uint32_t on_battery;
    std::uint32_t wake_up_time;
    // Held from the taking away to the putting back: other processes see that the one that took the
    // schedule away lives.
    UniqueHandle mutex;
};

// Before an operation: ends the agent, keeps the schedule in `saved` and in values of the program's
// own, writes zeros in its place and clears the notifications. The result is the clearing's.
bool SuspendAutoBackup(SavedSchedule& saved);

// After an operation: writes the schedule back (a value that was missing is there with 0 from then
// on), registers the notifications and forgets what was kept. The result is the registering's.
bool ResumeAutoBackup(SavedSchedule& saved);

// Whether an operation of any process has the schedule taken away.
bool ScheduleIsSuspended();

enum class ScheduleRecovery {
    kNothing,  // no schedule was left taken away, or its process lives
    kPutBack,  // it is back, with its notifications
    kDropped,  // somebody has set another schedule since: that one stays
};
// For a program that starts: puts back what a process that has ended took away.
ScheduleRecovery RecoverSchedule();

}  // namespace tolvenar
