#include "app/start/unattended.h"

#include "app/operations/backup_history.h"
#include "app/operations/card_wait.h"
#include "app/operations/operation_drivers.h"
#include "app/operations/storage_files.h"
#include "app/rules/launch_reason.h"
#include "platform/text.h"
#include "snapshot/compare/states.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;

constexpr std::size_t kLineUnits = 200;
constexpr std::uint64_t kMaxFigure = 0xFFFFFFFF;

// Nobody was there to see a message.
void LogEnd(const Application& app, const OperationEnd& end) {
    if (end.code == ResultCode::kSuccess || end.code == ResultCode::kNoDifference) {
        return;
    }
    TextBuffer<kLineUnits> line;
    line.Append(Utf16(app.launchReason)).Append(u": result ");
    line.AppendUnsigned(static_cast<std::uint32_t>(end.code)).Append(u", state ");
    line.AppendUnsigned(end.state_number).Append(u", missing bytes ");
    line.AppendUnsigned(static_cast<std::uint32_t>(
        end.missing_bytes < kMaxFigure ? end.missing_bytes : kMaxFigure));
    LogMessage(line.text(), u"RunUnattended", kLogError);
}

// A storage that another program holds answers as a missing one does, and must not be made anew.
// Nor must one whose folder is missing: the card may be there a moment later.
bool MayBeMade(const char16_t* sav) {
    return ::GetFileAttributesW(Wide(sav)) == INVALID_FILE_ATTRIBUTES &&
           ::GetLastError() == ERROR_FILE_NOT_FOUND;
}

// A write-protected storage is of no use to a backup.
ResultCode OpenOrCreate(Application& app) {
    OpenStorageResult result;
    const char16_t* sav = app.storage.names.sav;
    if (OpenStorage(sav, app.storage, result)) {
        return StorageIsWriteProtected(app.storage.names) ? ResultCode::kWriteProtected
                                                          : ResultCode::kSuccess;
    }
    const bool may_create = result == OpenStorageResult::kFileMissing && MayBeMade(sav);
    return may_create && CreateNewStorage() && OpenStorage(sav, app.storage, result)
               ? ResultCode::kSuccess
               : ResultCode::kNoStorage;
}

ResultCode LoadForBackup(Application& app) {
    if (!DeriveNames(app.storage.names)) {
        return ResultCode::kNoStorage;
    }
    const ResultCode opened = OpenOrCreate(app);
    if (opened != ResultCode::kSuccess) {
        return opened;
    }
    return LoadUnderHourglass(app) ? ResultCode::kSuccess : ResultCode::kJournalUnreadable;
}

std::optional<int> BackUp(Application& app) {
    char16_t path[kStoragePathUnits];
    if (!ReadStoragePath(path)) {
        return std::nullopt;
    }
    if (IsScheduledReason(app.launchReason)) {
        WaitForStorageFolder(path);
    }
    OperationEnd end;
    end.code = LoadForBackup(app);
    const bool is_loaded = end.code == ResultCode::kSuccess;
    if (is_loaded) {
        BackupDriver(app, NextStateNumber(app.storage.journal.get()), app.launchReason, true, end);
        CloseStorage(app.storage);
    }
    KeepAutomaticBackup(end.code);
    LogEnd(app, end);
    return is_loaded ? kDone : kFailed;
}

ResultCode LoadForRestore(Application& app) {
    char16_t path[kStoragePathUnits];
    CompleteStoragePath(ReadStoragePath(path), path);
    OpenStorageResult result;
    if (!DeriveNames(app.storage.names) ||
        !OpenStorage(app.storage.names.sav, app.storage, result)) {
        return ResultCode::kNoStorage;
    }
    return LoadUnderHourglass(app) ? ResultCode::kSuccess : ResultCode::kJournalUnreadable;
}

// The last state has a record of its own; a backup whose first block failed left none.
int RestoreLastState(Application& app) {
    OperationEnd end;
    end.code = LoadForRestore(app);
    const bool is_loaded = end.code == ResultCode::kSuccess;
    if (is_loaded) {
        const std::uint32_t last = LastStoredState(app.storage.journal.get());
        if (last != 0) {
            RestoreDriver(app, last, end);
        }
        CloseStorage(app.storage);
    }
    LogEnd(app, end);
    return is_loaded ? kDone : kFailed;
}

}  // namespace

std::optional<int> RunUnattended(Application& app) {
    if (IsBackupReason(app.launchReason)) {
        return BackUp(app);
    }
    if (IsRestoreReason(app.launchReason)) {
        return RestoreLastState(app);
    }
    return std::nullopt;
}

}  // namespace tolvenar
