#include "app/start/unattended.h"

#include "app/operations/operation_drivers.h"
#include "app/operations/storage_files.h"
#include "app/rules/launch_reason.h"
#include "snapshot/compare/states.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;

// A storage that another program holds answers as a missing one does, and must not be made anew. A
// write-protected one is of no use to a backup.
bool OpenOrCreate(Application& app) {
    OpenStorageResult result;
    const char16_t* sav = app.storage.names.sav;
    if (OpenStorage(sav, app.storage, result)) {
        return !StorageIsWriteProtected(app.storage.names);
    }
    if (result != OpenStorageResult::kFileMissing || !IsReallyAbsent(sav)) {
        return false;
    }
    return CreateNewStorage() && OpenStorage(sav, app.storage, result);
}

std::optional<int> BackUp(Application& app) {
    char16_t path[kStoragePathUnits];
    if (!ReadStoragePath(path)) {
        return std::nullopt;
    }
    if (!DeriveNames(app.storage.names) || !OpenOrCreate(app) || !LoadUnderHourglass(app)) {
        return kFailed;
    }
    BackupDriver(app, NextStateNumber(app.storage.journal.get()), app.launchReason, true);
    CloseStorage(app.storage);
    return kDone;
}

// The last state has a record of its own; a backup whose first block failed left none.
int RestoreLastState(Application& app) {
    char16_t path[kStoragePathUnits];
    CompleteStoragePath(ReadStoragePath(path), path);
    OpenStorageResult result;
    if (!DeriveNames(app.storage.names) ||
        !OpenStorage(app.storage.names.sav, app.storage, result) || !LoadUnderHourglass(app)) {
        return kFailed;
    }
    const std::uint32_t last = LastStoredState(app.storage.journal.get());
    if (last != 0) {
        RestoreDriver(app, last);
    }
    CloseStorage(app.storage);
    return kDone;
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
