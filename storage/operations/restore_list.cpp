#include "storage/operations/restore_list.h"

#include "platform/win32.h"

#include "storage/format/storage_reader.h"
#include "storage/operations/aimed_state.h"
#include "storage/operations/held_back.h"

namespace tolvenar {
namespace {

// Between the files and everything else, for the object store to settle.
constexpr DWORD kSettleMs = 100;

struct ErrorRow {
    DWORD error;
    FailureReason reason;
};
constexpr ErrorRow kErrorRows[] = {
    {ERROR_SHARING_VIOLATION, FailureReason::kInUse},
    {ERROR_LOCK_VIOLATION, FailureReason::kInUse},
    {ERROR_BUSY, FailureReason::kInUse},
    {ERROR_ACCESS_DENIED, FailureReason::kProtected},
    {ERROR_WRITE_PROTECT, FailureReason::kProtected},
    {ERROR_DISK_FULL, FailureReason::kNoRoom},
    {ERROR_HANDLE_DISK_FULL, FailureReason::kNoRoom},
    {ERROR_NOT_ENOUGH_MEMORY, FailureReason::kNoRoom},
    {ERROR_OUTOFMEMORY, FailureReason::kNoRoom},
    {ERROR_PATH_NOT_FOUND, FailureReason::kNoContainer},
    {ERROR_DIR_NOT_EMPTY, FailureReason::kNotEmpty},
    {ERROR_ALREADY_EXISTS, FailureReason::kIsThere},
    {ERROR_INVALID_DATA, FailureReason::kDamaged},
    {ERROR_CRC, FailureReason::kDamaged},
    {ERROR_FILE_NOT_FOUND, FailureReason::kNotStored},
    {kSortOrdersRefused, FailureReason::kNoOrders},
};

FailureReason ReasonOf(DWORD error) {
    for (const ErrorRow& row : kErrorRows) {
        if (row.error == error) {
            return row.reason;
        }
    }
    return FailureReason::kOther;
}

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
    Passes(Engine& engine, RestoreTools& tools, ObjectList& list, RestoreRun& run)
        : progress_(engine.progress),
          failures_(engine.storage.failures),
          tools_(tools),
          list_(list),
          run_(run) {}

    // Repeats passes over the chosen records until one has no failures, or as many as the one
    // before it. The failure count carries over between phases (docs/oddities.md, 12).
    void RunPhase(bool (*chosen)(const ObjectRecord&)) {
        for (bool is_first = true;; is_first = false) {
            const std::size_t failures = RunPass(chosen);
            const bool stuck = failures != 0 && failures == failures_before_;
            failures_before_ = failures;
            if (stuck) {
                failed_ = true;
                run_.ended_early |= is_first;
            }
            if (stuck || failures == 0) {
                return;
            }
        }
    }
    bool failed() const { return failed_; }

private:
    std::size_t RunPass(bool (*chosen)(const ObjectRecord&)) {
        std::size_t failures = 0;
        for (const ObjectList::Node& node : list_) {
            if (IsHeldBack(*node.record) || !chosen(*node.record)) {
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
            failures_.Set(record, ReasonOf(::GetLastError()));
            return false;
        }
        record.flags = 0;
        run_.journal.UpdateJournalOid(record, newOid);
        return true;
    }

    Progress& progress_;
    FailureTable& failures_;
    RestoreTools& tools_;
    ObjectList& list_;
    RestoreRun& run_;
    std::size_t failures_before_ = 0;
    bool failed_ = false;
};

}  // namespace

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

bool RestoreList(Engine& engine, ObjectList& list, RestoreRun& run, ResultCode& result_code) {
    StorageMapping storage;
    if (!storage.Open(engine.storage.names.sav)) {
        result_code = ResultCode::kDriver;
        return false;
    }
    engine.progress.ProgressBegin(2 * list.CountRecords());
    engine.progress.ProgressStep(u"Restoring...");
    const DatabaseCacheScope cache(engine.databases);
    StorageWindow window(storage);
    // The names of values have a reader of their own: reading one moves a window.
    MappedBytes bytes(storage);
    StorageReader stored(bytes);
    KeptKey key(0);
    RestoreTools tools{engine.info,
                       engine.databases,
                       storage,
                       window,
                       run.database_restore,
                       run.written,
                       {engine.storage.journal.get(), stored, engine.info},
                       key};
    run.ended_early = false;
    Passes passes(engine, tools, list, run);
    passes.RunPhase(IsDeletion);
    passes.RunPhase(IsFileToWrite);
    ::Sleep(kSettleMs);
    passes.RunPhase(IsOtherToWrite);
    if (!passes.failed() && !HoldsHeldBack(list)) {
        return true;
    }
    TurnRound(engine.storage, list);
    result_code = ResultCode::kFailed;
    return false;
}

}  // namespace tolvenar
