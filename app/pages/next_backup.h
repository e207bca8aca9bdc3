// When the next automatic backup begins, as the platform has it registered: the settings alone
// start nothing.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

constexpr int kNextBackupUnits = 400;
struct NextBackup {
    wchar_t line[kNextBackupUnits];
    wchar_t shorter[kNextBackupUnits];  // for where the line has no room
};
// The line for the Options page while something is automatic.
void FormatNextBackup(const Application& app, NextBackup& next);
// The line on a system that cannot start one.
void FormatNoAutomaticBackup(const Application& app, NextBackup& next);

}  // namespace tolvenar
