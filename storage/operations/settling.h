// Objects of the device that are what the state has but for their ids, as a device that was reset
// has them.
#pragma once

#include "snapshot/engine/descriptions.h"
#include "storage/operations/restore_list.h"

namespace tolvenar {

// Takes every pair of them out of the difference list: nothing is deleted or written, the journal
// in memory takes the device's id, and a record is protected like one that matched. Equal are
// folders in name and attributes, files also in size, time and the checksum of their contents,
// databases in name, type and sort orders, records in database and every property. Each object of
// the device is used once. `settled` tells whether there was any. False when there is no memory.
bool Settle(Engine& engine, Descriptions& descriptions, RestoreRun& run, bool& settled);

}  // namespace tolvenar
