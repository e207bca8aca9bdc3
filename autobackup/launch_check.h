// What a start of the program is for: the first decision that start-up makes.
#pragma once

#include "autobackup/power_status.h"

namespace tolvenar {

enum class LaunchCheckResult {
    kText = 0,         // none of the notification arguments: the text is the reason
    kTimed = 1,        // the daily backup is due
    kBattery = 2,      // the battery runs low
    kQuit = 3,         // handled, nothing to back up
    kInteractive = 4,  // no argument
};

// Classifies the command line, compared whole and with case. The arguments of the time move the
// daily notification on first; whether that succeeds makes no difference.
LaunchCheckResult CheckLaunchArgument(const wchar_t* command_line, PowerStatus& power);

}  // namespace tolvenar
