// Whether an object that a state holds is on the device still, whatever a scan could read of it.
#pragma once

#include "platform/win32.h"

#include "snapshot/compare/exclusion.h"
#include "snapshot/records/object_record.h"
#include "storage/format/info_block.h"
#include "storage/objects/database_layer.h"

namespace tolvenar {

// Asks the device for an object of the same kind and name as the stored one of `block`; of a
// database record for its id. False for what no state is to hold: what the exclusion rules name, is
// in ROM, or is a mounted card or on one. `oid` receives the object-store id of what is there, 0
// for registry objects and for what is in a database that cannot be opened, which counts as there.
// Databases are opened through the cache, which the caller closes.
bool IsOnDevice(DatabaseLayer& databases, const StorageFileNames& storage_files,
                const ObjectRecord& record, const InfoBlock& block, CEOID& oid);

// True when writing the object back would overwrite one of its name, whatever the rules say of
// that. For everything but database records, which have no name.
bool IsNameTaken(DatabaseLayer& databases, const InfoBlock& block);

// True when the path of a file or folder is a mounted card's or leads onto one.
bool LeadsOntoCard(const InfoBlock& block);

}  // namespace tolvenar
