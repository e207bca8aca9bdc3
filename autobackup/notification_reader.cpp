#include "autobackup/notification_reader.h"

#include "autobackup/notification_calls.h"

namespace tolvenar {

NotificationHandles::NotificationHandles() {
    DWORD needed = 0;
    GetNotificationHandles(nullptr, 0, &needed);
    if (needed == 0) {
        return;
    }
    handles_.Reset(::LocalAlloc(LPTR, needed * sizeof(HANDLE)));
    if (!handles_) {
        return;
    }
    if (!GetNotificationHandles(static_cast<HANDLE*>(handles_.get()), needed, &count_)) {
        handles_.Reset();
        count_ = 0;
        return;
    }
    if (count_ > needed) {
        count_ = needed;
    }
}

DWORD NotificationReader::SizeOf(HANDLE notification) {
    DWORD size = 0;
    GetNotification(notification, 0, &size, nullptr);
    return size;
}

bool NotificationReader::Reserve(DWORD size) {
    if (buffer_ && ::LocalSize(buffer_.get()) >= size) {
        return true;
    }
    buffer_.Reset(::LocalAlloc(LPTR, size));
    out_of_memory_ = !buffer_;
    return !out_of_memory_;
}

CE_NOTIFICATION_INFO_HEADER* NotificationReader::Read(HANDLE notification) {
    out_of_memory_ = false;
    DWORD size = SizeOf(notification);
    if (size < sizeof(CE_NOTIFICATION_INFO_HEADER) || !Reserve(size)) {
        return nullptr;
    }
    auto* bytes = static_cast<BYTE*>(buffer_.get());
    if (!GetNotification(notification, size, &size, bytes)) {
        return nullptr;
    }
    auto* header = reinterpret_cast<CE_NOTIFICATION_INFO_HEADER*>(bytes);
    return header->pcent != nullptr ? header : nullptr;
}

}  // namespace tolvenar
