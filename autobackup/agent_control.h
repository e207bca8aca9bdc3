// The agent program and the schedule around operations.
#pragma once

#include <cstdint>

namespace tolvenar {

// The schedule as it was before an operation: raw values, kSettingAbsent for one that was missing.
struct SavedSchedule {
    SavedSchedule();
    std::uint32_t on_time;
    std::uint32_t on_battery;
    std::uint32_t wake_up_time;
};

// Starts the closing tool of the installation, which ends a running agent. False when the
// installation folder cannot be read or the tool not started.
bool CloseAgent();

// Starts the agent; a failure is of no consequence.
void StartAgent();

// Before an operation: ends the agent, keeps the schedule in `saved`, writes zeros in its place and
// clears the notifications. The result is the clearing's.
bool SuspendAutoBackup(SavedSchedule& saved);

// After an operation: writes the schedule back (a value that was missing is there with 0 from then
// on) and registers the notifications. The result is the registering's.
bool ResumeAutoBackup(const SavedSchedule& saved);

// Clears the notifications and registers them from the settings.
bool RefreshAutoBackup();

}  // namespace tolvenar
