// The CE notification declarations, or what a tool chain's own <notify.h> lacks of them.
#ifndef TOLV_PLATFORM_NOTIFY_H
#define TOLV_PLATFORM_NOTIFY_H
#pragma GCC system_header
#include <windows.h>
#if defined(UNDER_CE) && __has_include_next(<notify.h>)
#include_next <notify.h>
#else
#ifdef __cplusplus
extern "C" {
#endif
typedef struct _CE_USER_NOTIFICATION {
    DWORD ActionFlags; LPWSTR pwszDialogTitle; LPWSTR pwszDialogText; LPWSTR pwszSound; DWORD nMaxSound; DWORD dwReserved;
} CE_USER_NOTIFICATION, *PCE_USER_NOTIFICATION;
typedef struct _CE_NOTIFICATION_TRIGGER {
    DWORD dwSize; DWORD dwType; DWORD dwEvent; WCHAR* lpszApplication; WCHAR* lpszArguments; SYSTEMTIME stStartTime; SYSTEMTIME stEndTime;
} CE_NOTIFICATION_TRIGGER, *PCE_NOTIFICATION_TRIGGER;
WINBASEAPI HANDLE WINAPI CeSetUserNotificationEx(HANDLE, CE_NOTIFICATION_TRIGGER*, CE_USER_NOTIFICATION*);
WINBASEAPI BOOL WINAPI CeClearUserNotification(HANDLE);
WINBASEAPI BOOL WINAPI CeGetUserNotification(HANDLE, DWORD, LPDWORD, LPBYTE);
WINBASEAPI BOOL WINAPI CeGetUserNotificationHandles(HANDLE*, DWORD, LPDWORD);
#ifdef __cplusplus
}
#endif
#endif
#ifndef CNT_EVENT
#define CNT_EVENT 1
#define CNT_TIME 2
#define CNT_PERIOD 3
#define CNT_CLASSICTIME 4
#define NOTIFICATION_EVENT_NONE 0
#define NOTIFICATION_EVENT_TIME_CHANGE 1
#define NOTIFICATION_EVENT_OFF_AC_POWER 4
#define NOTIFICATION_EVENT_WAKEUP 11
#define NOTIFICATION_EVENT_TZ_CHANGE 12
typedef struct _CE_NOTIFICATION_INFO_HEADER { HANDLE hNotification; DWORD dwStatus; CE_NOTIFICATION_TRIGGER* pcent; CE_USER_NOTIFICATION* pceun; } CE_NOTIFICATION_INFO_HEADER;
#endif
#ifdef __cplusplus
static_assert(sizeof(CE_NOTIFICATION_TRIGGER) == 52 && sizeof(CE_USER_NOTIFICATION) == 24 && sizeof(CE_NOTIFICATION_INFO_HEADER) == 16);
#endif
#endif
