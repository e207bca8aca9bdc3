// Restores one object of a difference list: finds out what it is and hands it to its kind's module.
#pragma once

#include "platform/win32.h"

#include "storage/engine.h"
#include "storage/restore_outcome.h"
#include "storage/storage_view.h"
#include "storage/written_records.h"

namespace tolvenar {

// What one restore works with.
struct RestoreRun {
    Engine& engine;
    const StorageMapping& storage;
    bool skip_databases;  // databases and records count as done, untouched
    WrittenRecords written;
};

// Deletes the object of a record with JF_ADD from the device, writes any other back. `newOid` is
// the device's id of a re-created file, folder, database or record, else 0. A record whose block is
// damaged fails after a line in the log.
RestoreOutcome DoRestoreRecord(RestoreRun& run, const ObjectRecord& record, CEOID& newOid);

}  // namespace tolvenar
