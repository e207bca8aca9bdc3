// Whether an object's stored data are what its record says. Platform-free.
#pragma once

#include "snapshot/records/object_record.h"
#include "storage/format/storage_reader.h"

namespace tolvenar {

// True when the data of `record`, whose block is `block`, can be read, have the checksum that the
// record keeps of them, and can be written to a device: a file's path holds no zero, properties are
// whole. Objects without data, and types of which no checksum is kept, are what they are.
bool DataAreSound(StorageReader& stored, const ObjectRecord& record, const InfoBlock& block);

}  // namespace tolvenar
