// Writes databases and their records back to the device and deletes them from it.
#pragma once

#include "platform/win32.h"

#include "snapshot/compare/written_records.h"
#include "storage/files/storage_view.h"
#include "storage/format/info_block.h"
#include "storage/objects/database_layer.h"
#include "storage/objects/restore_outcome.h"

namespace tolvenar {

// `block` describes a database or a record of the database that it names; `data` holds the sort
// orders or the properties. `record_oid` is the device's id of the record, 0 when it has none:
// there is nothing to delete then, and what is written is a new record. `newOid` is the id of what
// was written; a record's is entered in `written` too. Fails, touching nothing, when description
// and data do not fit one another.
RestoreOutcome RestoreDatabaseObject(DatabaseLayer& databases, WrittenRecords& written,
                                     const StoredBytes& data, const InfoBlock& block,
                                     CEOID record_oid, CEOID& newOid, RestoreMode mode);

// True when writing back the record of `block`, whose stored properties are `data`, would overwrite
// one of the device: RestoreDatabaseObject in the mode of writing back finds that record.
bool WouldOverwriteRecord(DatabaseLayer& databases, const WrittenRecords& written,
                          const StoredBytes& data, const InfoBlock& block, CEOID record_oid);

}  // namespace tolvenar
