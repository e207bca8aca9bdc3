#include "autobackup/notification_calls.h"

#include "platform/system_function.h"

namespace tolvenar {
namespace {

auto* FindSet() {
    return FindSystemFunction<decltype(::CeSetUserNotificationEx)>(L"CeSetUserNotificationEx");
}
auto* FindGetHandles() {
    return FindSystemFunction<decltype(::CeGetUserNotificationHandles)>(
        L"CeGetUserNotificationHandles");
}
auto* FindGet() {
    return FindSystemFunction<decltype(::CeGetUserNotification)>(L"CeGetUserNotification");
}

}  // namespace

bool HasNotificationCalls() {
    return FindSet() != nullptr && FindGetHandles() != nullptr && FindGet() != nullptr;
}

HANDLE SetNotification(HANDLE old, CE_NOTIFICATION_TRIGGER* trigger, CE_USER_NOTIFICATION* user) {
    auto* const set = FindSet();
    return set != nullptr ? set(old, trigger, user) : nullptr;
}

BOOL GetNotificationHandles(HANDLE* handles, DWORD count, DWORD* needed) {
    auto* const get = FindGetHandles();
    return get != nullptr ? get(handles, count, needed) : FALSE;
}

BOOL GetNotification(HANDLE notification, DWORD size, DWORD* needed, BYTE* buffer) {
    auto* const get = FindGet();
    return get != nullptr ? get(notification, size, needed, buffer) : FALSE;
}

}  // namespace tolvenar
