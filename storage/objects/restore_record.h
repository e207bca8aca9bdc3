// Restores one object of a difference list: finds out what it is and hands it to its kind's module.
#pragma once

#include "platform/win32.h"

#include "snapshot/compare/info_source.h"
#include "snapshot/compare/value_names.h"
#include "snapshot/compare/written_records.h"
#include "storage/files/storage_view.h"
#include "storage/files/storage_window.h"
#include "storage/objects/database_layer.h"
#include "storage/objects/kept_key.h"
#include "storage/objects/restore_outcome.h"

namespace tolvenar {

// What a restore does with databases and records.
enum class DatabaseRestore {
    kByDevice,  // the list tells what the device has: a record's id is the device's
    kByStates,  // the list tells what states have: an id counts while the device's record is theirs
    kNone,      // they count as done, untouched
};

// What restoring an object works with.
struct RestoreTools {
    LiveObjects& live;
    DatabaseLayer& databases;
    const StorageMapping& storage;
    StorageWindow& window;  // of `storage`: blocks, and data of what is no file
    DatabaseRestore database_restore;
    WrittenRecords& written;
    ValueNames value_names;
    KeptKey& key;  // of the value that was restored last
};

// Deletes the object of a record with JF_ADD from the device, writes any other back. `newOid` is
// the device's id of a re-created file, folder, database or record, else 0. A record whose block is
// damaged fails after a line in the log.
RestoreOutcome DoRestoreRecord(RestoreTools& tools, const ObjectRecord& record, CEOID& newOid);

}  // namespace tolvenar
