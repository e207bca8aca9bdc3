// The platform's notification calls that came with version 2.12 of the system. Where they are
// missing a notification cannot be set, and none is found.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

// Without them nothing starts a backup by itself.
bool HasNotificationCalls();

// As CeSetUserNotificationEx: null when the notification could not be set.
HANDLE SetNotification(HANDLE old, CE_NOTIFICATION_TRIGGER* trigger, CE_USER_NOTIFICATION* user);
// As CeGetUserNotificationHandles.
BOOL GetNotificationHandles(HANDLE* handles, DWORD count, DWORD* needed);
// As CeGetUserNotification.
BOOL GetNotification(HANDLE notification, DWORD size, DWORD* needed, BYTE* buffer);

}  // namespace tolvenar
