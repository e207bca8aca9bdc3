// The step between the user's wish and the operation: "ARE YOU SURE?".
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Also the bits of the setting Reminders, and what the answering message adds to WM_APP + 120.
enum class Confirmation : std::uint32_t {
    kRestored = 2,  // after a restore: the device is to be booted again
    kBackup = 4,
    kRestore = 8,
};

// Asks the user, unless that reminder is switched off, and posts the answer to the operation window
// with `lparam`. Runs on the main thread, for kRestored on the operation thread.
void ConfirmThenRun(Application& app, Confirmation kind, LPARAM lparam);

}  // namespace tolvenar
