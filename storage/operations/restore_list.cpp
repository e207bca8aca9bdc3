#include "storage/operations/restore_list.h"

#include "platform/win32.h"

#include "snapshot/compare/journal_update.h"
#include "storage/operations/aimed_state.h"

namespace tolvenar {
namespace {

// Between the files and everything else, for the object store to settle.
constexpr DWORD kSettleMs = 100;

bool IsDeletion(const ObjectRecord& record) { return (record.flags & JF_ADD) != 0; }
bool IsFileToWrite(const ObjectRecord& record) {
    return (record.flags & JF_DELETE) != 0 && TraitsOf(record.type).phase == RestorePhase::kFiles;
}
bool IsOtherToWrite(const ObjectRecord& record) {
    return (record.flags & JF_DELETE) != 0 && TraitsOf(record.type).phase == RestorePhase::kOthers;
}

// The passes over one list. Repeating them settles the order of objects that depend on one another
// without sorting: a folder comes before its files after a pass in which they failed.
class Passes {
public:
    Passes(Engine& engine, RestoreTools& tools, ObjectList& list)
        : progress_(engine.progress),
          tools_(tools),
          list_(list),
          journal_(engine.storage.journal.get()) {}

    // Repeats passes over the chosen records until one has no failures, or as many as the one
    // before it. The failure count carries over between phases (docs/oddities.md, 12).
    void RunPhase(bool (*chosen)(const ObjectRecord&)) {
        for (;;) {
            const std::size_t failures = RunPass(chosen);
            const bool stuck = failures != 0 && failures == failures_before_;
            failures_before_ = failures;
            if (stuck) {
                failed_ = true;
            }
            if (stuck || failures == 0) {
                return;
            }
        }
    }
    bool failed() const { return failed_; }
    bool FinishJournal() { return journal_.SeparateVersions(); }

private:
    std::size_t RunPass(bool (*chosen)(const ObjectRecord&)) {
        std::size_t failures = 0;
        for (const ObjectList::Node& node : list_) {
            if (!chosen(*node.record)) {
                continue;
            }
            if (!Restore(*node.record)) {
                ++failures;
            }
            progress_.ProgressStep();
        }
        return failures;
    }

    bool Restore(ObjectRecord& record) {
        CEOID newOid = 0;
        if (DoRestoreRecord(tools_, record, newOid) == RestoreOutcome::kFailed) {
            return false;
        }
        record.flags = 0;
        journal_.UpdateJournalOid(record, newOid);
        return true;
    }

    Progress& progress_;
    RestoreTools& tools_;
    ObjectList& list_;
    JournalUpdater journal_;
    std::size_t failures_before_ = 0;
    bool failed_ = false;
};

// Enters the device's records that the state holds as they are among those that are never
// overwritten: on a device that was reset one of them may have the id that another stored record
// had before. False when there is no memory.
bool ProtectMatchedRecords(const ObjectList* device, WrittenRecords& written) {
    if (device == nullptr) {
        return true;
    }
    for (const ObjectList::Node& node : *device) {
        const ObjectRecord& record = *node.record;
        const bool is_matched = (record.flags & JF_MATCHED) != 0;
        if (is_matched && record.type == ObjectType::kDatabaseRecord && record.dwOID != 0 &&
            !written.Add(record.dwOID)) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool RestoreList(Engine& engine, ObjectList& list, DatabaseRestore database_restore,
                 ResultCode& result_code) {
    StorageMapping storage;
    if (!storage.Open(engine.storage.names.sav)) {
        result_code = ResultCode::kDriver;
        return false;
    }
    engine.progress.ProgressBegin(2 * list.CountRecords());
    engine.progress.ProgressStep(u"Restoring...");
    const DatabaseCacheScope cache(engine.databases);
    MappedBytes bytes(storage);
    StorageReader stored(bytes);
    RestoreTools tools{engine.info,
                       stored,
                       engine.databases,
                       storage,
                       database_restore,
                       {},
                       {engine.storage.journal.get(), stored, engine.info}};
    if (!ProtectMatchedRecords(engine.storage.newer.get(), tools.written)) {
        TurnRound(engine.storage, list);
        result_code = ResultCode::kFailed;
        return false;
    }
    Passes passes(engine, tools, list);
    passes.RunPhase(IsDeletion);
    passes.RunPhase(IsFileToWrite);
    ::Sleep(kSettleMs);
    passes.RunPhase(IsOtherToWrite);
    if (!passes.FinishJournal()) {
        // The file keeps the ids of before; the next backup finds the objects changed.
        engine.storage.journal.reset();
    }
    if (!passes.failed()) {
        return true;
    }
    TurnRound(engine.storage, list);
    result_code = ResultCode::kFailed;
    return false;
}

}  // namespace tolvenar
