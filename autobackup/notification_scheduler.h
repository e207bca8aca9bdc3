// Keeps the platform's notifications in step with the automatic-backup settings. Holds no state:
// the notifications live in the platform's store and outlast the program and a reboot.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

// The notification with the same type, event, application and arguments (case-sensitive), the first
// in handle order; null when there is none.
HANDLE FindNotification(const CE_NOTIFICATION_TRIGGER& trigger);

// Removes every notification whose type and arguments are those of a row of the table, whatever its
// application. True when each removal succeeded or there was nothing to remove; false also when a
// record could not be read for want of memory.
bool ClearAutoBackupNotifications();

// Registers the rows that the settings ask for; one that is there already is replaced, an event's
// in place.
// Leaves other notifications alone: callers clear first. True when every registration succeeded.
bool RegisterAutoBackupNotifications();

// Moves the daily notification on to its next occurrence at the time that it carries itself, or
// makes it from the settings. An occurrence within `passed_seconds` counts as past. False when
// there is nothing to move or make, or the platform refuses.
bool RescheduleTimeNotification(LONG passed_seconds = 0);

}  // namespace tolvenar
