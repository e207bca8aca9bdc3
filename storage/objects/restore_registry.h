// Writes registry keys and values back to the device and deletes them from it.
#pragma once

#include <cstdint>

#include "storage/files/storage_view.h"
#include "storage/format/info_block.h"
#include "storage/objects/kept_key.h"
#include "storage/objects/restore_outcome.h"

namespace tolvenar {

// Key path and value name of one object, with terminators.
struct RegistryName {
    const char16_t* key_path;
    const char16_t* value_name;  // null for a key
};

// `block` describes a key or a value of this name, `data` is the value's. `kept` stays open for the
// values of one key. Fails, touching nothing, when the description makes no sense.
RestoreOutcome RestoreRegistryObject(KeptKey& kept, const StoredBytes& data, const InfoBlock& block,
                                     const RegistryName& name, RestoreMode mode);

}  // namespace tolvenar
