#include "app/operations/backup_history.h"

#include <string_view>

#include "app/settings/own_values.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

// As the values hold them.
struct StoredAutomaticBackup {
    FILETIME ended;
    std::uint32_t code;
};
struct StoredUnsaved {
    std::uint32_t count;
    std::uint32_t state_number;
    char16_t storage[kStoragePathUnits];
};

struct EndText {
    ResultCode code;
    UINT text;
};
constexpr EndText kEndTexts[] = {
    {ResultCode::kSuccess, IDS_AUTOMATIC_SAVED},
    {ResultCode::kNoDifference, IDS_AUTOMATIC_NO_CHANGE},
    {ResultCode::kNoDifferenceList, IDS_AUTOMATIC_NOT_COMPARED},
    {ResultCode::kJournalUnreadable, IDS_AUTOMATIC_NO_LIST},
    {ResultCode::kNoSpace, IDS_AUTOMATIC_NO_ROOM},
    {ResultCode::kNotStarted, IDS_AUTOMATIC_NOT_STARTED},
    {ResultCode::kNoMemory, IDS_AUTOMATIC_NO_MEMORY},
    {ResultCode::kWriteProtected, IDS_AUTOMATIC_PROTECTED},
    {ResultCode::kNoStorage, IDS_AUTOMATIC_NO_STORAGE},
};

}  // namespace

void KeepAutomaticBackup(ResultCode code) {
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    StoredAutomaticBackup stored{};
    ::SystemTimeToFileTime(&now, &stored.ended);
    stored.code = static_cast<std::uint32_t>(code);
    WriteOwnBytes(own_value::kLastAutomatic, &stored, sizeof stored);
}

bool ReadAutomaticBackup(AutomaticBackup& last) {
    StoredAutomaticBackup stored{};
    if (!ReadOwnBytes(own_value::kLastAutomatic, &stored, sizeof stored)) {
        return false;
    }
    last = {stored.ended, static_cast<ResultCode>(stored.code)};
    return true;
}

UINT TextOfAutomaticBackup(ResultCode code) {
    for (const EndText& row : kEndTexts) {
        if (row.code == code) {
            return row.text;
        }
    }
    return IDS_AUTOMATIC_FAILED;
}

void KeepUnsaved(const StorageNames& names, std::uint32_t state_number,
                 const BackupResult& result) {
    StoredUnsaved stored{};
    stored.count = result.held + result.kept + result.failed;
    stored.state_number = state_number;
    std::u16string_view(names.path).copy(stored.storage, kStoragePathUnits - 1);
    if (stored.count != 0) {
        WriteOwnBytes(own_value::kLastUnsaved, &stored, sizeof stored);
    } else {
        DeleteOwnValue(own_value::kLastUnsaved);
    }
}

std::uint32_t ReadUnsaved(const StorageNames& names, std::uint32_t state_number) {
    StoredUnsaved stored{};
    if (!ReadOwnBytes(own_value::kLastUnsaved, &stored, sizeof stored)) {
        return 0;
    }
    stored.storage[kStoragePathUnits - 1] = 0;
    const bool is_of_state =
        stored.state_number == state_number && std::u16string_view(stored.storage) == names.path;
    return is_of_state ? stored.count : 0;
}

}  // namespace tolvenar
