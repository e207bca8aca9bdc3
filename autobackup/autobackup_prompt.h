// The prompt that counts down before an automatic backup.
#pragma once

#include "autobackup/launch_check.h"

namespace tolvenar {

enum class PromptAnswer {
    kNotShown = 0,
    kGoOn = 1,  // time is up, OK, or the prompt was closed
    kCancelled = 2,
};

// Shows the prompt, modal and without an owner, for kTimed or kBattery.
PromptAnswer ShowAutoBackupPrompt(HINSTANCE instance, LaunchCheckResult reason);

}  // namespace tolvenar
