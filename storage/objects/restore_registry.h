// Writes registry keys and values back to the device and deletes them from it.
#pragma once

#include <cstdint>

#include "snapshot/records/registry_objects.h"
#include "storage/files/storage_view.h"
#include "storage/format/info_block.h"
#include "storage/objects/restore_outcome.h"

namespace tolvenar {

// `block` describes a key or a value, `data` is the value's. A live object is named by its entry in
// the registry-object table, `live`; a stored one (null) by the block's name, split at the first
// separator. Fails, touching nothing, when the description makes no sense.
RestoreOutcome RestoreRegistryObject(const StoredBytes& data, const InfoBlock& block,
                                     const RegistryObject* live, RestoreMode mode);

}  // namespace tolvenar
