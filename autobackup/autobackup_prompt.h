// The prompt that counts down before an automatic backup.
#pragma once

#include "autobackup/launch_check.h"

namespace tolvenar {

// Shows the prompt, modal and without an owner, for kTimed or kBattery. 1: go on with the backup
// (time is up, OK, or the prompt was closed); 2: the user cancelled; anything else: it could not be
// shown.
INT_PTR ShowAutoBackupPrompt(HINSTANCE instance, LaunchCheckResult reason);

}  // namespace tolvenar
