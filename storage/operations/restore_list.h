// Works through a difference list, in passes that repeat for as long as they make progress.
#pragma once

#include "snapshot/compare/journal_update.h"
#include "snapshot/compare/written_records.h"
#include "storage/objects/restore_record.h"
#include "storage/opened/engine.h"
#include "storage/operations/result_code.h"

namespace tolvenar {

// What the runs of one restore share.
struct RestoreRun {
    explicit RestoreRun(ObjectList* loaded_journal) : journal(loaded_journal) {}

    JournalUpdater journal;
    WrittenRecords written;  // ids that are never overwritten
    DatabaseRestore database_restore = DatabaseRestore::kByDevice;
    bool ended_early = false;  // a phase of the last run had one pass only, and failures in it
};

// Deletes from the device what `list` marks JF_ADD, then writes back what it marks JF_DELETE, files
// before all else, and puts new object ids in the journal in memory; what is held back is passed
// over. What could not be done stays in the list with its sense reversed: false and kFailed then.
// False and kDriver, with the list as it was, when the storage file cannot be mapped.
bool RestoreList(Engine& engine, ObjectList& list, RestoreRun& run, ResultCode& result_code);

// Enters the device's records that the state holds as they are among those that are never
// overwritten: on a device that was reset one of them may have the id that another stored record
// had before. False when there is no memory.
bool ProtectMatchedRecords(const ObjectList* device, WrittenRecords& written);

}  // namespace tolvenar
