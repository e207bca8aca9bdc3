// What restoring one object comes to.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

enum class RestoreMode { kDelete = 0, kWriteBack = 1 };

enum class RestoreOutcome {
    kDone = 0,
    // May be tried again: another object may have to come first. The last error tells why.
    kFailed = 1,
};

// The last error of a database that is back without its sort orders, which the device did not take.
// The platform has none that means this; bit 29 marks a program's own.
constexpr DWORD kSortOrdersRefused = 0x20000001;

inline RestoreOutcome FailWith(DWORD error) {
    ::SetLastError(error);
    return RestoreOutcome::kFailed;
}

}  // namespace tolvenar
