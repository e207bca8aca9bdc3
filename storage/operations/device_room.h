// Whether the device has room for what a restore writes back.
#pragma once

#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"
#include "storage/objects/restore_record.h"

namespace tolvenar {

struct RoomNeed {
    std::uint64_t written = 0;  // bytes of everything that is written back
    std::uint64_t missing = 0;  // bytes that lack for it; 0 when it is enough
};

// Reckons what everything that the difference list writes back takes: free store and free memory,
// from which a file's copying takes its room, and the files that are deleted and overwritten are
// there for it. False when there is no memory.
bool FindRoomNeed(const ObjectList& difference, DatabaseRestore database_restore, InfoSource& info,
                  RoomNeed& need);

}  // namespace tolvenar
