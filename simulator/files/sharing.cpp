#include "simulator/files/sharing.h"

#include <windows.h>

#include "simulator/processes/processes.h"

namespace sim::files {

bool LockAllows(const std::string& lock, std::uint32_t access, std::uint32_t share) {
    if (lock.empty()) {
        return true;
    }
    const bool shares_reading = lock == "read" || lock == "write";
    if ((access & GENERIC_READ) != 0 && !shares_reading) {
        return false;
    }
    if ((access & GENERIC_WRITE) != 0 && lock != "write") {
        return false;
    }
    // Who only asks about the file disturbs nobody.
    const bool opens_data = (access & (GENERIC_READ | GENERIC_WRITE)) != 0;
    return !opens_data || (share & FILE_SHARE_READ) != 0;
}

std::uint32_t CheckUnused(FileTable& table, const Node& node) {
    if (!table.LockOf(node.number).empty() ||
        processes::IsRunning(table.device(), table.PathOf(node))) {
        return ERROR_SHARING_VIOLATION;
    }
    HANDLE alone =
        ::CreateFileW(table.ContentFile(node.number).c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (alone == INVALID_HANDLE_VALUE) {
        return ERROR_SHARING_VIOLATION;
    }
    ::CloseHandle(alone);
    return 0;
}

}  // namespace sim::files
