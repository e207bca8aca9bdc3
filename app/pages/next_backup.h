// When the next automatic backup begins, as the platform has it registered: the settings alone
// start nothing.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

constexpr int kNextBackupUnits = 240;
// The line for the Options page while something is automatic.
void FormatNextBackup(const Application& app, wchar_t (&line)[kNextBackupUnits]);

}  // namespace tolvenar
