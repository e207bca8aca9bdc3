// What the program remembers of its last backups, in values of its own: how the last unattended one
// ended, and how many objects the last one could not save.
#pragma once

#include "platform/win32.h"

#include "storage/format/storage_names.h"
#include "storage/operations/backup_result.h"

namespace tolvenar {

// The end of an operation as a user who was not there asks for it.
struct OperationEnd {
    ResultCode code = ResultCode::kSuccess;
    std::uint32_t state_number = 0;   // 0 when it did not come so far
    std::uint64_t missing_bytes = 0;  // room on the card, or memory
};

struct AutomaticBackup {
    FILETIME ended;  // local time
    ResultCode code;
};
void KeepAutomaticBackup(ResultCode code);
// False when there was none.
bool ReadAutomaticBackup(AutomaticBackup& last);
// The number of the text that tells how it ended: a format for its time.
UINT TextOfAutomaticBackup(ResultCode code);

// Objects on the device that are not in state `state_number` as they were. Remembered with the
// storage, so that they are told of no other one.
void KeepUnsaved(const StorageNames& names, std::uint32_t state_number, const BackupResult& result);
// 0 for a state of which nothing is remembered.
std::uint32_t ReadUnsaved(const StorageNames& names, std::uint32_t state_number);

}  // namespace tolvenar
