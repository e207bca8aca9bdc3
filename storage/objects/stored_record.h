// What a database record of the device is compared by.
#pragma once

#include "storage/format/info_block.h"
#include "storage/objects/database_layer.h"

namespace tolvenar {

// Reads the properties of the record `oid` of the database of that name, through a handle of its
// own. False when there is no such database or record. A record without properties may read as "no
// data".
bool ReadRecordOf(DatabaseLayer& databases, const char16_t* database_name, CEOID oid,
                  RecordBuffer& buffer);

// The content fingerprint of a record's properties as the device hands them out; strings and blobs
// in the buffer are turned into offsets. 0 for a record without properties and for damaged ones.
std::uint16_t FingerprintOfProperties(void* properties, DWORD buffer_bytes, WORD count);

// True while the device's record with the id of `record`, in the database that `block` names, still
// has the description in `block` and the stored fingerprint. A device gives out ids again, and a
// user changes records under their ids.
bool IsStoredRecord(DatabaseLayer& databases, const InfoBlock& block, const ObjectRecord& record);

// True when the device's record `oid` of the database that `block` names holds just the stored
// properties of `data`, which `block` describes: every one, byte for byte.
bool HoldsProperties(DatabaseLayer& databases, const InfoBlock& block, CEOID oid,
                     const std::uint8_t* data);

}  // namespace tolvenar
