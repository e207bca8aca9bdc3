// Reading the platform's notification store.
#pragma once

#include "platform/unique_resource.h"

namespace tolvenar {

// The handles of all notifications on the device, whoever set them.
class NotificationHandles {
public:
    // Reads them; none when there is no notification or the platform does not tell.
    NotificationHandles();
    DWORD count() const { return count_; }
    HANDLE operator[](DWORD index) const { return static_cast<HANDLE*>(handles_.get())[index]; }

private:
    UniqueLocal handles_;
    DWORD count_ = 0;
};

// Reads records into one local buffer that grows when a record needs it.
class NotificationReader {
public:
    // Bytes that the record needs; 0 when there is nothing to read.
    static DWORD SizeOf(HANDLE notification);
    // Makes room for records of `size` bytes; false when there is no memory.
    bool Reserve(DWORD size);
    // The record of a notification, valid until the next call, or null when it cannot be read.
    CE_NOTIFICATION_INFO_HEADER* Read(HANDLE notification);
    // The last Read failed because there was no memory.
    bool out_of_memory() const { return out_of_memory_; }

private:
    UniqueLocal buffer_;
    bool out_of_memory_ = false;
};

}  // namespace tolvenar
