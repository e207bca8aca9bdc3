#include "app/operations/operation_drivers.h"

#include "app/operations/memory_check.h"
#include "app/operations/messages.h"
#include "app/operations/requests.h"
#include "app/operations/storage_files.h"
#include "app/operations/storage_search.h"
#include "autobackup/schedule_suspension.h"
#include "platform/text.h"
#include "snapshot/text/log.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"
#include "storage/operations/backup_room.h"
#include "storage/operations/backup_writer.h"
#include "storage/operations/restore_engine.h"

namespace tolvenar {
namespace {

constexpr wchar_t kBackupTitle[] = L"Backing up in progress";

void KeepStatus(Application& app, ResultCode result) {
    if (result == ResultCode::kJournalUnreadable) {
        app.storageStatus = StorageStatus::kNone;
        NoteFailedLoad(app);
    }
}

// False if no journal is loaded (the storage would look empty) or the card was swapped (its storage
// would be overwritten with this one's states).
bool StorageIsReady(Application& app) {
    if (HasStorage(app) && JournalIsAsLoaded(app.storage)) {
        return true;
    }
    KeepStatus(app, ResultCode::kJournalUnreadable);
    // No page shows states of a storage that is not open.
    CloseStorage(app.storage);
    return false;
}

struct BackupOrder {
    std::uint32_t state_number;
    const wchar_t* description;
    bool automatic;
};

// One backup between taking the schedule off and putting it back.
BackupResult RunSuspended(Application& app, const BackupOrder& order) {
    BackupResult result{ResultCode::kNotStarted};
    if (SuspendAutoBackup(app.schedule)) {
        // An automatic one ends the program, which needs the journal no more.
        DoBackup(app.engine, order.state_number, Utf16(order.description), order.automatic, result);
    }
    ResumeAutoBackup(app.schedule);
    KeepStatus(app, result.code);
    return result;
}

// A backup from its checks on.
BackupResult RunChecked(Application& app, const BackupOrder& order, std::uint32_t& available) {
    if (!StorageIsReady(app)) {
        return {ResultCode::kJournalUnreadable};
    }
    if (StorageIsWriteProtected(app.storage.names)) {
        return {ResultCode::kWriteProtected};
    }
    return MemoryCheck(available) ? RunSuspended(app, order) : BackupResult{ResultCode::kNoMemory};
}

bool MayDeleteOldStorage(Application& app, bool automatic) {
    if (automatic) {
        app.settings.MayDeleteOldStorage =
            ReadSetting(setting::kMayDeleteOldStorage) & kSettingMask;
    }
    if (app.settings.MayDeleteOldStorage == 0) {
        return false;
    }
    return automatic ||
           ShowMessage(app.main_dialog,
                       L"Not enough disk space to backup. Old Storage may be deleted to free disk "
                       L"space.\r\nContinue?",
                       MB_YESNO | MB_ICONQUESTION) == IDYES;
}

// Gives up the old storage; true when an empty one is open and loaded in its place.
bool StartNewStorage(Application& app) {
    DeleteOldStorage();
    CreateNewStorage();
    OpenStorageResult result;
    return OpenStorage(app.storage.names.sav, app.storage, result) && LoadUnderHourglass(app);
}

// A backup that found nothing to save leaves the state before as it is.
void RememberUnsaved(const Application& app, const BackupOrder& order, const BackupResult& result) {
    if (result.code == ResultCode::kSuccess) {
        KeepUnsaved(app.storage.names, order.state_number, result);
    }
    if (result.code == ResultCode::kNoDifference) {
        KeepUnsaved(app.storage.names, order.state_number - 1, result);
    }
}

OperationEnd EndOf(const BackupOrder& order, const BackupResult& result, std::uint32_t available) {
    OperationEnd end{result.code, order.state_number, 0};
    if (result.code == ResultCode::kNoSpace) {
        end.missing_bytes = result.bytes_needed;
    }
    if (result.code == ResultCode::kNoMemory) {
        end.missing_bytes = MissingMemory(available);
    }
    return end;
}

}  // namespace

bool LoadUnderPopup(Application& app) {
    app.popup.Show(app.main_dialog, L"Loading List", 0);
    const bool loaded = OpenJournal(app.storage, &app.progress);
    app.popup.CloseAndWait();
    if (loaded && LacksItsStates(app.storage)) {
        TellOfMissingStates();
    }
    return loaded;
}

bool LoadUnderHourglass(Application& app) {
    const HCURSOR previous = ::SetCursor(::LoadCursorW(nullptr, IDC_WAIT));
    const bool loaded = OpenJournal(app.storage, &app.progress);
    ::SetCursor(previous);
    if (loaded && LacksItsStates(app.storage)) {
        LogMessage(u"The storage file holds data, its journal no state", u"OpenJournal", kLogNote);
    }
    return loaded;
}

bool BackupDriver(Application& app, std::uint32_t state_number, const wchar_t* description,
                  bool automatic, OperationEnd& end) {
    app.popup.Show(app.main_dialog, kBackupTitle, kBackupSteps);
    BackupOrder order{state_number, description, automatic};
    ReportContext context{app.main_dialog, automatic, true, 0, 0};
    BackupResult result = RunChecked(app, order, context.available);
    app.popup.CloseAndWait();
    RememberUnsaved(app, order, result);
    end = EndOf(order, result, context.available);
    const bool succeeded = ReportBackup(result.code, context);
    if (result.code != ResultCode::kNoSpace) {
        return succeeded;
    }

    // Otherwise every state would go for nothing.
    if (DeletionMakesRoom(app.storage.names, result) && MayDeleteOldStorage(app, automatic) &&
        StartNewStorage(app)) {
        order.state_number = NextStateNumber(app.storage.journal.get());
        app.popup.Show(app.main_dialog, kBackupTitle, kBackupSteps);
        result = RunSuspended(app, order);
        app.popup.CloseAndWait();
        RememberUnsaved(app, order, result);
        end = EndOf(order, result, context.available);
    }
    context.is_first_pass = false;
    context.amount = result.bytes_needed;
    context.storage_is_full = result.storage_is_full;
    return ReportBackup(result.code, context);
}

RestoreResult RunStateRestore(Application& app, std::uint32_t state_number,
                              RestoreQuestions* questions) {
    if (!StorageIsReady(app)) {
        return {ResultCode::kJournalUnreadable};
    }
    std::uint32_t available = 0;
    if (!MemoryCheck(available)) {
        return {ResultCode::kNoMemory};
    }
    RestoreResult result{ResultCode::kNotStarted};
    if (app.installationMissing || SuspendAutoBackup(app.schedule)) {
        DoRestore(app.engine, state_number, questions, result);
        if (app.installationMissing) {
            app.settings.onTime = app.settings.onBattery = 0;
        }
    }
    // Whatever happened. Without an installation nothing was saved, so this writes zeros.
    ResumeAutoBackup(app.schedule);
    KeepStatus(app, result.code);
    return result;
}

ResultCode RunRestorePreview(Application& app, std::uint32_t state_number) {
    if (!StorageIsReady(app)) {
        return ResultCode::kJournalUnreadable;
    }
    std::uint32_t available = 0;
    if (!MemoryCheck(available)) {
        return ResultCode::kNoMemory;
    }
    return app.preview.Find(app.storage, state_number) ? ResultCode::kSuccess
                                                       : ResultCode::kNoDifferenceList;
}

RestoreResult RunDifferenceRestore(Application& app, bool invert_first,
                                   RestoreQuestions* questions) {
    if (!StorageIsReady(app)) {
        return {ResultCode::kJournalUnreadable};
    }
    const ObjectList* difference = app.storage.difference.get();
    if (difference == nullptr || difference->CountRecords() == 0) {
        return {ResultCode::kNoDifference};
    }
    RestoreResult result{ResultCode::kNotStarted};
    DoAdvancedRestore(app.engine, invert_first, questions, result);
    KeepStatus(app, result.code);
    return result;
}

bool RestoreDriver(Application& app, std::uint32_t state_number, OperationEnd& end) {
    app.popup.Show(app.main_dialog, kRestoreTitle, kRestoreSteps);
    const RestoreResult result = RunStateRestore(app, state_number, nullptr);
    app.popup.CloseAndWait();
    end = {result.code, state_number, result.missing_bytes};
    if (result.code == ResultCode::kNoMemory) {
        end.missing_bytes = kMinimumFreeBytes;
    }
    return ReportRestore(app.main_dialog, result);
}

}  // namespace tolvenar
