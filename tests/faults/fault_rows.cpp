#include "tests/faults/fault_rows.h"

#include "platform/win32.h"

#include <algorithm>
#include <cstring>

namespace tests {

const std::vector<FaultRow>& FaultRows() {
    static const std::vector<FaultRow> rows = {
        {"CeCreateDatabaseEx", ERROR_DISK_FULL},
        {"CeDeleteDatabaseEx", ERROR_SHARING_VIOLATION},
        {"CeDeleteRecord", ERROR_SHARING_VIOLATION},
        {"CeFindFirstDatabaseEx", ERROR_NOT_ENOUGH_MEMORY},
        {"CeFindNextDatabaseEx", ERROR_KEY_DELETED},
        {"CeOidGetInfoEx", ERROR_INVALID_HANDLE},
        {"CeOpenDatabaseEx", ERROR_NOT_ENOUGH_MEMORY},
        {"CeReadRecordPropsEx", ERROR_NOT_ENOUGH_MEMORY},
        {"CeSeekDatabase", ERROR_INVALID_PARAMETER},
        {"CeSetDatabaseInfoEx", ERROR_DISK_FULL},
        {"CeWriteRecordProps", ERROR_DISK_FULL},
        {"CloseHandle", ERROR_INVALID_HANDLE, FaultKind::kCloses},
        {"CreateDirectoryW", ERROR_DISK_FULL},
        {"CreateFileForMappingW", ERROR_SHARING_VIOLATION},
        {"CreateFileMappingW", ERROR_NOT_ENOUGH_MEMORY},
        {"CreateFileW", ERROR_SHARING_VIOLATION},
        {"DeleteFileW", ERROR_SHARING_VIOLATION},
        {"FindClose", ERROR_INVALID_HANDLE, FaultKind::kCloses},
        {"FindFirstFileW", ERROR_NOT_ENOUGH_MEMORY},
        {"FindNextFileW", ERROR_NOT_ENOUGH_MEMORY},
        {"FlushFileBuffers", ERROR_WRITE_FAULT},
        {"GetDiskFreeSpaceExW", ERROR_NOT_READY},
        {"GetFileAttributesW", ERROR_NOT_READY},
        {"GetFileSize", ERROR_READ_FAULT},
        {"GetModuleHandleW", ERROR_MOD_NOT_FOUND},
        {"GetProcAddressW", ERROR_PROC_NOT_FOUND},
        {"GetStoreInformation", ERROR_NOT_READY},
        {"GetVersionExW", ERROR_INVALID_PARAMETER},
        {"HeapAlloc", ERROR_NOT_ENOUGH_MEMORY},
        {"HeapFree", ERROR_INVALID_PARAMETER, FaultKind::kCloses},
        {"MapViewOfFile", ERROR_NOT_ENOUGH_MEMORY},
        {"MoveFileW", ERROR_ACCESS_DENIED},
        {"ReadFile", ERROR_READ_FAULT},
        {"RegCloseKey", ERROR_INVALID_HANDLE, FaultKind::kCloses},
        {"RegCreateKeyExW", ERROR_DISK_FULL},
        {"RegDeleteKeyW", ERROR_ACCESS_DENIED},
        {"RegDeleteValueW", ERROR_ACCESS_DENIED},
        {"RegEnumKeyExW", ERROR_NOT_ENOUGH_MEMORY},
        {"RegEnumValueW", ERROR_NOT_ENOUGH_MEMORY},
        {"RegOpenKeyExW", ERROR_NOT_ENOUGH_MEMORY},
        {"RegQueryInfoKeyW", ERROR_NOT_ENOUGH_MEMORY},
        {"RegQueryValueExW", ERROR_NOT_ENOUGH_MEMORY},
        {"RegSetValueExW", ERROR_DISK_FULL},
        {"RemoveDirectoryW", ERROR_SHARING_VIOLATION},
        {"SetEndOfFile", ERROR_DISK_FULL},
        {"SetFileAttributesW", ERROR_ACCESS_DENIED},
        {"SetFilePointer", ERROR_INVALID_HANDLE},
        {"SetFileTime", ERROR_ACCESS_DENIED},
        {"UnmapViewOfFile", ERROR_INVALID_ADDRESS, FaultKind::kCloses},
        {"WriteFile", ERROR_WRITE_FAULT},
    };
    return rows;
}

const std::vector<FaultRow>& ShortRows() {
    static const std::vector<FaultRow> rows = {{"ReadFile", 0, FaultKind::kShort},
                                               {"WriteFile", 0, FaultKind::kShort}};
    return rows;
}

bool CannotFail(const char* function) {
    static const char* const names[] = {
        "CompareStringW", "GetSystemInfo",       "GetSystemTime", "GetLastError",
        "GetTickCount",   "GlobalMemoryStatus",  "keybd_event",   "SetLastError",
        "Sleep",          "SystemTimeToFileTime"};
    return std::any_of(std::begin(names), std::end(names),
                       [&](const char* name) { return std::strcmp(name, function) == 0; });
}

}  // namespace tests
