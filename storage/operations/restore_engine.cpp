#include "storage/operations/restore_engine.h"

#include "platform/win32.h"

#include "app/settings/settings.h"
#include "snapshot/compare/kept_objects.h"
#include "snapshot/compare/prune.h"
#include "snapshot/engine/descriptions.h"
#include "snapshot/engine/difference_engine.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"
#include "storage/operations/aimed_state.h"
#include "storage/operations/restore_list.h"

namespace tolvenar {
namespace {

// The registry-object table is of use for as long as there is a list with live registry objects:
// what could not be restored is shown and tried again.
class RegistryObjectsScope {
public:
    explicit RegistryObjectsScope(OpenedStorage& storage) : storage_(storage) {}
    ~RegistryObjectsScope() {
        if (storage_.difference == nullptr) {
            storage_.registry_objects.RegObjectClear();
        }
    }
    RegistryObjectsScope(const RegistryObjectsScope&) = delete;
    RegistryObjectsScope& operator=(const RegistryObjectsScope&) = delete;

private:
    OpenedStorage& storage_;
};

// Takes out of the difference list what is never restored. False when the storage file, which
// describes the objects, cannot be opened, or there is no memory.
bool PruneForRestore(Engine& engine) {
    Descriptions descriptions(engine);
    if (!descriptions.sav_file) {
        return false;
    }
    PruneDifferences(*engine.storage.difference, kRestorePruning, descriptions.source);
    return KeepStoredObjects(*engine.storage.difference, descriptions.source);
}

// Restores the difference list, then loads the journal again, saved before with `keep_ids`. A
// write-protected one keeps the ids of before.
bool RestoreDifferences(Engine& engine, DatabaseRestore database_restore, bool keep_ids,
                        ResultCode& result_code) {
    OpenedStorage& storage = engine.storage;
    if (!RestoreList(engine, *storage.difference, database_restore, result_code)) {
        FreeWorkingLists(storage, false);
    }
    CloseJournal(storage.names, storage.journal,
                 keep_ids && !StorageIsWriteProtected(storage.names), &engine.progress);
    if (OpenJournal(storage, &engine.progress)) {
        FreeWorkingLists(storage, result_code != ResultCode::kFailed);
        return true;
    }
    if (result_code != ResultCode::kFailed) {
        result_code = ResultCode::kJournalUnreadable;
    }
    FreeWorkingLists(storage, false);
    return false;
}

bool FailEarly(OpenedStorage& storage, ResultCode reason, ResultCode& result_code) {
    FreeWorkingLists(storage, false);
    result_code = reason;
    return false;
}

// Nothing was restored. The list is left as one that was restored in part: whoever tries again has
// its sense turned round first, and would delete what is to be written back.
bool FailWithWholeList(OpenedStorage& storage, ResultCode& result_code) {
    TurnRound(storage, *storage.difference);
    return FailEarly(storage, ResultCode::kFailed, result_code);
}

}  // namespace

bool DoRestore(Engine& engine, std::uint32_t state_number, ResultCode& result_code) {
    OpenedStorage& storage = engine.storage;
    const RegistryObjectsScope registry_objects(storage);
    result_code = ResultCode::kSuccess;
    if (!FindDifference(engine, state_number)) {
        return FailEarly(storage, ResultCode::kNoDifferenceList, result_code);
    }
    if (!PruneForRestore(engine)) {
        return FailWithWholeList(storage, result_code);
    }
    if (storage.difference->CountRecords() == 0) {
        for (int phase = 0; phase < 3; ++phase) {
            engine.progress.ProgressStep(u"Complete.");
        }
        FreeWorkingLists(storage, true);
        result_code = ResultCode::kNoDifference;
        return true;
    }
    return RestoreDifferences(engine, DatabaseRestore::kByDevice, true, result_code);
}

bool DoAdvancedRestore(Engine& engine, bool invert_first, ResultCode& result_code) {
    OpenedStorage& storage = engine.storage;
    const RegistryObjectsScope registry_objects(storage);
    result_code = ResultCode::kSuccess;
    if (storage.difference == nullptr) {
        return false;
    }
    if (invert_first) {
        TurnRound(storage, *storage.difference);
    }
    if (!PruneForRestore(engine) || !WriteBackAimedVersions(engine)) {
        return FailWithWholeList(storage, result_code);
    }
    const bool restores_databases =
        (ReadSetting(setting::kAdvancedDBRestoring) & kSettingMask) != 0;
    return RestoreDifferences(
        engine, restores_databases ? DatabaseRestore::kByStates : DatabaseRestore::kNone, false,
        result_code);
}

}  // namespace tolvenar
