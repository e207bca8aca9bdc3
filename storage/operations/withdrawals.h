// What a backup does not record as gone, since it is on the device still.
#pragma once

#include "storage/opened/engine.h"
#include "storage/operations/backup_result.h"

namespace tolvenar {

// Goes through the difference list of a backup before anything is written. A deletion that took the
// place of its file's addition becomes that addition. A deletion is taken out when an object of the
// kind is on the device under the name (a record: under the id) and the scan did not read it: the
// new state keeps the version of the state before. What is kept, and what was not read and is in no
// state, is logged and counted in `result`. False when the storage file cannot be opened or there
// is no memory: the backup must end then.
bool WithdrawDeletions(Engine& engine, BackupResult& result);

// After the blocks are written: an addition that failed takes the deletion of its older version
// along, which is marked JF_FAILED too, so that neither enters the journal. False as above.
bool WithdrawDeletionsOfFailed(Engine& engine);

}  // namespace tolvenar
