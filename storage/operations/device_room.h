// Whether the device has room for what a restore writes back.
#pragma once

#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"
#include "storage/objects/restore_record.h"

namespace tolvenar {

// Puts into `missing` the bytes that lack for everything that the difference list writes back: free
// store and free memory, from which a file's copying takes its room, and the files that are deleted
// and overwritten are there for it. 0 when it is enough. False when there is no memory.
bool FindMissingRoom(const ObjectList& difference, DatabaseRestore database_restore,
                     InfoSource& info, std::uint64_t& missing);

}  // namespace tolvenar
