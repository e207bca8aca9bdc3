#include "storage/operations/restore_engine.h"

#include "platform/win32.h"

#include "app/settings/settings.h"
#include "snapshot/compare/states.h"
#include "snapshot/engine/descriptions.h"
#include "snapshot/engine/difference_engine.h"
#include "storage/opened/journal.h"
#include "storage/opened/old_journals.h"
#include "storage/opened/storage_file.h"
#include "storage/operations/aimed_state.h"
#include "storage/operations/failure_log.h"
#include "storage/operations/held_back.h"
#include "storage/operations/left_out_log.h"
#include "storage/operations/restore_list.h"
#include "storage/operations/restore_preparation.h"
#include "storage/operations/scan_result.h"

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

// One restore, from the list of differences to the journal that is loaded again.
class Restore {
public:
    Restore(Engine& engine, RestoreQuestions* questions, RestoreResult& result, bool tells_device)
        : engine_(engine),
          storage_(engine.storage),
          result_(result),
          run_(engine.storage.journal.get()),
          plan_{engine, questions, nullptr, tells_device} {
        storage_.failures.Clear();
        storage_.saved = {};
    }

    // The list is that of the device and a state, or of two states and is worked on with
    // `database_restore`.
    bool RunFull();
    bool RunAdvanced(DatabaseRestore database_restore);

private:
    // False, and nothing must be restored, when the list is kept whole.
    bool Prepare();
    bool TakeOlderList();
    bool EndWithoutDifference();
    bool EndSettled();
    bool RestoreDifferences();
    void RunPasses();
    void LogFailed();
    bool SaveAndLoadJournal(bool& is_saved);
    // Nothing was restored. The list is left as one that was restored in part: whoever tries again
    // has its sense turned round first, and would delete what is to be written back.
    bool FailWithWholeList();

    Engine& engine_;
    OpenedStorage& storage_;
    RestoreResult& result_;
    RestoreRun run_;
    RestorePlan plan_;
};

bool FailEarly(OpenedStorage& storage, ResultCode reason, RestoreResult& result) {
    FreeWorkingLists(storage, false);
    result.code = reason;
    return false;
}

bool Restore::FailWithWholeList() {
    // The journal in memory may have new ids of what was settled; without memory it is read again.
    if (!run_.journal.SeparateVersions()) {
        CloseJournal(storage_.names, storage_.journal, false, nullptr);
        OpenJournal(storage_, nullptr);
    }
    result_.missing_bytes = plan_.questions == nullptr ? plan_.missing_bytes : 0;
    SetReasons(*storage_.difference,
               plan_.missing_bytes != 0 ? FailureReason::kNoRoom : FailureReason::kNotTried,
               storage_.failures);
    ReleaseHeldBack(*storage_.difference);
    TurnRound(storage_, *storage_.difference);
    return FailEarly(storage_, ResultCode::kFailed, result_);
}

bool Restore::Prepare() {
    switch (PrepareRestore(plan_, run_)) {
        case PlanOutcome::kGo: return true;
        case PlanOutcome::kTakeOlderList: result_.took_older_list = true; [[fallthrough]];
        default: return FailWithWholeList();
    }
}

bool Restore::RunFull() {
    if (!Prepare()) {
        return result_.took_older_list && TakeOlderList();
    }
    if (storage_.difference->CountRecords() == 0 && !plan_.lacks_objects && !plan_.leaves_unread) {
        return plan_.has_settled ? EndSettled() : EndWithoutDifference();
    }
    return RestoreDifferences();
}

bool Restore::RunAdvanced(DatabaseRestore database_restore) {
    run_.database_restore = database_restore;
    if (!Prepare()) {
        return result_.took_older_list && TakeOlderList();
    }
    return RestoreDifferences();
}

// The differences are those of another list.
bool Restore::TakeOlderList() {
    FreeWorkingLists(storage_, true);
    char16_t older[kStorageNameUnits];
    const bool exchanged =
        FindNewestOldJournal(storage_.names, older) && ExchangeJournals(storage_.names, older);
    result_.took_older_list = exchanged;
    result_.code = ResultCode::kNotStarted;
    CloseJournal(storage_.names, storage_.journal, false, nullptr);
    if (OpenJournal(storage_, &engine_.progress)) {
        return exchanged;
    }
    result_.code = ResultCode::kJournalUnreadable;
    return false;
}

bool Restore::EndWithoutDifference() {
    for (int phase = 0; phase < 3; ++phase) {
        engine_.progress.ProgressStep(u"Complete.");
    }
    FreeWorkingLists(storage_, true);
    result_.code = ResultCode::kNoDifference;
    return true;
}

// Everything was there, under other ids. Where they cannot be saved nothing is left to say.
bool Restore::EndSettled() {
    engine_.progress.ProgressStep(u"Complete.");
    bool is_saved = false;
    const bool is_loaded = SaveAndLoadJournal(is_saved);
    FreeWorkingLists(storage_, true);
    result_.code = !is_loaded ? ResultCode::kJournalUnreadable
                   : is_saved ? ResultCode::kSuccess
                              : ResultCode::kNoDifference;
    return is_loaded;
}

// Restores the difference list, then loads the journal again.
bool Restore::RestoreDifferences() {
    RunPasses();
    // What a damaged list does not tell is missing, whatever could be done, and what could not be
    // read is as it was.
    const bool is_whole = plan_.trusts_list && !plan_.lacks_objects && !plan_.leaves_unread;
    if (result_.code == ResultCode::kSuccess && !is_whole) {
        result_.code = ResultCode::kFailed;
    }
    if (result_.code == ResultCode::kFailed) {
        result_.is_damaged = plan_.is_damaged;
        LogFailed();
        ReleaseHeldBack(*storage_.difference);
    }
    bool is_saved = false;
    if (SaveAndLoadJournal(is_saved)) {
        FreeWorkingLists(storage_, result_.code != ResultCode::kFailed);
        return true;
    }
    if (result_.code != ResultCode::kFailed) {
        result_.code = ResultCode::kJournalUnreadable;
    }
    FreeWorkingLists(storage_, false);
    return false;
}

// What keeps one phase from going on may be a failure of the phase before (docs/oddities.md, 12):
// then what is left is tried again, for as long as it becomes less.
void Restore::RunPasses() {
    ObjectList& difference = *storage_.difference;
    for (;;) {
        const std::size_t before = CountPending(difference);
        result_.code = ResultCode::kSuccess;
        if (RestoreList(engine_, difference, run_, result_.code) ||
            result_.code != ResultCode::kFailed || !plan_.tells_device || !run_.ended_early ||
            CountPending(difference) >= before) {
            return;
        }
        TurnRound(storage_, difference);
    }
}

void Restore::LogFailed() {
    Descriptions descriptions(engine_);
    LogNotRestored(storage_, descriptions.source);
    LogLeftAlone(storage_.left_out);
}

// The journal is saved with new ids after a full restore only. A write-protected one, and a damaged
// list, which must be told from a sound one the next time too, are as before.
bool Restore::SaveAndLoadJournal(bool& is_saved) {
    // Without memory the file keeps the ids of before; the next backup finds the objects changed.
    if (!run_.journal.SeparateVersions()) {
        storage_.journal.reset();
    }
    const bool saves =
        plan_.tells_device && plan_.trusts_list && !StorageIsWriteProtected(storage_.names);
    is_saved = CloseJournal(storage_.names, storage_.journal, saves, &engine_.progress) != 0;
    return OpenJournal(storage_, &engine_.progress);
}

}  // namespace

bool DoRestore(Engine& engine, std::uint32_t state_number, RestoreQuestions* questions,
               RestoreResult& result) {
    const RegistryObjectsScope registry_objects(engine.storage);
    result = {};
    if (!FindDifference(engine, state_number)) {
        return FailEarly(engine.storage, CodeWithoutDifferences(engine.storage), result);
    }
    // A state that is none holds nothing: everything on the device would be deleted for it.
    if (!HasState(*engine.storage.journal, state_number)) {
        engine.storage.difference.reset();
        return FailEarly(engine.storage, ResultCode::kNoSpace, result);
    }
    return Restore(engine, questions, result, true).RunFull();
}

bool DoAdvancedRestore(Engine& engine, bool invert_first, RestoreQuestions* questions,
                       RestoreResult& result) {
    OpenedStorage& storage = engine.storage;
    const RegistryObjectsScope registry_objects(storage);
    result = {};
    if (storage.difference == nullptr) {
        return false;
    }
    if (invert_first) {
        TurnRound(storage, *storage.difference);
    }
    const bool restores_databases =
        (ReadSetting(setting::kAdvancedDBRestoring) & kSettingMask) != 0;
    return Restore(engine, questions, result, false)
        .RunAdvanced(restores_databases ? DatabaseRestore::kByStates : DatabaseRestore::kNone);
}

}  // namespace tolvenar
