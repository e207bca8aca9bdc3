// Which record of the device a stored record is written over.
#pragma once

#include "snapshot/compare/written_records.h"
#include "storage/objects/database_layer.h"

namespace tolvenar {

// `database` is open under `database_name`, `properties` are about to be written and `record_oid`
// is the id that the record had. The id of the record to overwrite, or 0 for a new one. In a
// database with a key property it is the first record with the same key, in any other the one that
// has the stored id. A record that this restore itself has written is never overwritten: on a reset
// device the ids that are given out again meet those that were stored.
CEOID FindMatchingRecord(DatabaseLayer& layer, HANDLE database, const char16_t* database_name,
                         const CEPROPVAL* properties, WORD property_count, CEOID record_oid,
                         const WrittenRecords& written);

}  // namespace tolvenar
