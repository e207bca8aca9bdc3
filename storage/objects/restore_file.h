// Writes files and folders back to the device and deletes them from it.
#pragma once

#include "platform/win32.h"

#include <cstdint>

#include "storage/files/storage_view.h"
#include "storage/format/info_block.h"
#include "storage/objects/restore_outcome.h"

namespace tolvenar {

// `block` names and describes the file or folder; its contents stand at `data_offset` of the
// storage file. `newOid` is the object id of what was written, 0 when it cannot be told.
RestoreOutcome RestoreFileObject(const StorageMapping& storage, std::uint32_t data_offset,
                                 const InfoBlock& block, CEOID& newOid, RestoreMode mode);

// 1 when the path is there and not in ROM: what a deletion could have removed. 0 otherwise.
int StillExists(const char16_t* path);

}  // namespace tolvenar
