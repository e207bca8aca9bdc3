// What restoring one object comes to. Platform-free.
#pragma once

namespace tolvenar {

enum class RestoreMode { kDelete = 0, kWriteBack = 1 };

enum class RestoreOutcome {
    kDone = 0,
    kFailed = 1,  // may be tried again: another object may have to come first
};

}  // namespace tolvenar
