// Windows CE's view of notifications: structures and the marshalled record over
// `sim::notifications`.
#include <cstring>
#include <notify.h>
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/notifications/notifications.h"
#include "simulator/store/names.h"

namespace {

using sim::notifications::Notification;
using sim::notifications::UserNotification;
using OptionalText = std::optional<std::u16string>;

OptionalText TextOf(const WCHAR* text) {
    return text != nullptr ? OptionalText(sim::StoredText(text)) : std::nullopt;
}

sim::notifications::Time TimeOf(const SYSTEMTIME& time) {
    return {time.wYear, time.wMonth,  time.wDayOfWeek, time.wDay,
            time.wHour, time.wMinute, time.wSecond,    time.wMilliseconds};
}

SYSTEMTIME ToSystemTime(const sim::notifications::Time& time) {
    return {time[0], time[1], time[2], time[3], time[4], time[5], time[6], time[7]};
}

bool IsUsable(const CE_NOTIFICATION_TRIGGER* trigger, const CE_USER_NOTIFICATION* user) {
    if (trigger == nullptr || trigger->dwSize != sizeof *trigger) {
        return false;
    }
    switch (trigger->dwType) {
        case CNT_EVENT: return user == nullptr;
        case CNT_TIME:
        case CNT_PERIOD: return true;
        case CNT_CLASSICTIME: return trigger->lpszArguments == nullptr;
        default: return false;
    }
}

Notification From(const CE_NOTIFICATION_TRIGGER& trigger, const CE_USER_NOTIFICATION* user) {
    Notification notification;
    notification.kind = trigger.dwType;
    notification.event = trigger.dwType == CNT_EVENT ? trigger.dwEvent : 0;
    notification.application = TextOf(trigger.lpszApplication);
    notification.arguments = TextOf(trigger.lpszArguments);
    if (trigger.dwType != CNT_EVENT) {
        notification.start = TimeOf(trigger.stStartTime);
        notification.end = TimeOf(trigger.stEndTime);
    }
    if (user != nullptr) {
        notification.user = UserNotification{user->ActionFlags, TextOf(user->pwszDialogTitle),
                                             TextOf(user->pwszDialogText), TextOf(user->pwszSound),
                                             user->nMaxSound};
    }
    return notification;
}

// Lays a record out: structures first, then the texts. Without a buffer it only measures.
class RecordWriter {
public:
    explicit RecordWriter(BYTE* buffer) : buffer_(buffer) {}
    DWORD size() const { return size_; }

    // Answers where the structure stands; null while measuring.
    template <typename T>
    T* Put(const T& value) {
        return static_cast<T*>(Append(&value, sizeof value));
    }
    WCHAR* PutText(const OptionalText& text) {
        if (!text) {
            return nullptr;
        }
        return static_cast<WCHAR*>(Append(text->c_str(), (text->size() + 1) * sizeof(WCHAR)));
    }

private:
    void* Append(const void* bytes, std::size_t count) {
        void* place = nullptr;
        if (buffer_ != nullptr) {
            place = std::memcpy(buffer_ + size_, bytes, count);
        }
        size_ += static_cast<DWORD>(count);
        return place;
    }
    BYTE* buffer_;
    DWORD size_ = 0;
};

CE_NOTIFICATION_TRIGGER TriggerOf(const Notification& notification) {
    CE_NOTIFICATION_TRIGGER trigger{};
    trigger.dwSize = sizeof trigger;
    trigger.dwType = notification.kind;
    trigger.dwEvent = notification.event;
    trigger.stStartTime = ToSystemTime(notification.start);
    trigger.stEndTime = ToSystemTime(notification.end);
    return trigger;
}

// The record's size; `buffer` null only measures.
DWORD WriteRecord(const Notification& notification, BYTE* buffer) {
    RecordWriter writer(buffer);
    CE_NOTIFICATION_INFO_HEADER header{};
    header.hNotification = reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(notification.handle));
    header.dwStatus = notification.status;
    CE_NOTIFICATION_INFO_HEADER* const header_at = writer.Put(header);
    CE_NOTIFICATION_TRIGGER* const trigger_at = writer.Put(TriggerOf(notification));
    const UserNotification user = notification.user.value_or(UserNotification{});
    CE_USER_NOTIFICATION* user_at = nullptr;
    if (notification.user) {
        user_at = writer.Put(
            CE_USER_NOTIFICATION{user.actions, nullptr, nullptr, nullptr, user.longest_sound, 0});
    }
    WCHAR* const application = writer.PutText(notification.application);
    WCHAR* const arguments = writer.PutText(notification.arguments);
    WCHAR* const title = writer.PutText(user.title);
    WCHAR* const text = writer.PutText(user.text);
    WCHAR* const sound = writer.PutText(user.sound);
    if (buffer == nullptr) {
        return writer.size();
    }
    header_at->pcent = trigger_at;
    header_at->pceun = user_at;
    trigger_at->lpszApplication = application;
    trigger_at->lpszArguments = arguments;
    if (user_at != nullptr) {
        user_at->pwszDialogTitle = title;
        user_at->pwszDialogText = text;
        user_at->pwszSound = sound;
    }
    return writer.size();
}

DWORD HandleValue(HANDLE handle) { return static_cast<DWORD>(reinterpret_cast<UINT_PTR>(handle)); }

DWORD GetRecord(HANDLE handle, DWORD size, LPDWORD needed, LPBYTE buffer) {
    const std::optional<Notification> notification =
        sim::notifications::Get(Device::Current(), HandleValue(handle));
    const bool is_aligned = reinterpret_cast<UINT_PTR>(buffer) % sizeof(DWORD) == 0;
    *needed = 0;
    if (!notification || !is_aligned || (size != 0 && buffer == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    *needed = WriteRecord(*notification, nullptr);
    if (size < *needed) {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    WriteRecord(*notification, buffer);
    return NO_ERROR;
}

DWORD GetHandles(HANDLE* handles, DWORD count, LPDWORD needed) {
    const std::vector<Notification> all = sim::notifications::All(Device::Current());
    *needed = static_cast<DWORD>(all.size());
    if (handles == nullptr) {
        return count == 0 ? NO_ERROR : ERROR_INVALID_PARAMETER;
    }
    if (count < all.size()) {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    for (const Notification& notification : all) {
        *handles++ = reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(notification.handle));
    }
    return NO_ERROR;
}

}  // namespace

HANDLE WINAPI CeSetUserNotificationEx(HANDLE handle, CE_NOTIFICATION_TRIGGER* trigger,
                                      CE_USER_NOTIFICATION* user) {
    return Gated(
        Call::CeSetUserNotificationEx, HANDLE{},
        [&]() -> HANDLE {
            LastError error;
            DWORD result = 0;
            if (IsUsable(trigger, user)) {
                Notification notification = From(*trigger, user);
                notification.handle = HandleValue(handle);
                result = sim::notifications::Set(Device::Current(), notification);
            }
            error.Answer(result != 0 ? 0 : ERROR_INVALID_PARAMETER);
            return reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(result));
        },
        handle, trigger != nullptr ? trigger->lpszArguments : nullptr);
}

BOOL WINAPI CeClearUserNotification(HANDLE handle) {
    return GatedAnswer(
        Call::CeClearUserNotification,
        [&] {
            const bool cleared = sim::notifications::Clear(Device::Current(), HandleValue(handle));
            return cleared ? 0 : ERROR_INVALID_PARAMETER;
        },
        handle);
}

BOOL WINAPI CeGetUserNotificationHandles(HANDLE* handles, DWORD count, LPDWORD needed) {
    return GatedAnswer(
        Call::CeGetUserNotificationHandles,
        [&]() -> DWORD {
            return needed != nullptr ? GetHandles(handles, count, needed) : ERROR_INVALID_PARAMETER;
        },
        count);
}

BOOL WINAPI CeGetUserNotification(HANDLE handle, DWORD size, LPDWORD needed, LPBYTE buffer) {
    return GatedAnswer(
        Call::CeGetUserNotification,
        [&]() -> DWORD {
            return needed != nullptr ? GetRecord(handle, size, needed, buffer)
                                     : ERROR_INVALID_PARAMETER;
        },
        handle, size);
}
