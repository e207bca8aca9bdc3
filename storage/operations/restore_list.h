// Works through a difference list, in passes that repeat for as long as they make progress.
#pragma once

#include "storage/objects/restore_record.h"
#include "storage/opened/engine.h"
#include "storage/operations/result_code.h"

namespace tolvenar {

// Deletes from the device what `list` marks JF_ADD, then writes back what it marks JF_DELETE, files
// before all else, and puts new object ids in the journal in memory. What could not be done stays
// in the list with its sense reversed: false and kFailed then. False and kDriver, with the list as
// it was, when the storage file cannot be mapped.
bool RestoreList(Engine& engine, ObjectList& list, DatabaseRestore database_restore,
                 ResultCode& result_code);

}  // namespace tolvenar
