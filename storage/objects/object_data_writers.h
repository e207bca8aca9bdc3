// Writes the data that belongs to an object's block, by the type of the object.
#pragma once

#include "platform/win32.h"

#include <cstdint>

#include "storage/format/info_block.h"
#include "storage/format/storage_appender.h"
#include "storage/objects/database_layer.h"
#include "storage/objects/object_info.h"

namespace tolvenar {

// What a writer leaves for the object's record.
struct StoredData {
    std::uint32_t offset = kNoData;
    std::uint16_t checksum = 0;
};

// The object of `block`, which `live` has just described: `TolvOID` for registry objects, `oid` for
// those of the object store. The writers append the block's data_bytes bytes to `storage`; they
// fail when the object has not exactly as many any more.
struct DataWriter {
    ObjectInfo& live;
    DatabaseLayer& databases;
    StorageAppender& storage;
    const InfoBlock& block;
    std::uint32_t TolvOID;
    CEOID oid;
};

// A key has no data and the checksum 0xFFFF.
bool BackupRegistryData(const DataWriter& writer, StoredData& data);
// A database's sort orders; the properties that a record was described by.
bool BackupDatabaseData(const DataWriter& writer, StoredData& data);
// A folder and a file in ROM have no data and the checksum 0, an empty file none and 0xFFFF. On
// failure `data` is that of an empty file.
bool BackupFileData(const DataWriter& writer, StoredData& data);
// The description of the state being written.
bool BackupStateData(const DataWriter& writer, StoredData& data);

// Calls the writer of the block's type; any other type fails.
bool BackupObjectData(const DataWriter& writer, StoredData& data);

}  // namespace tolvenar
