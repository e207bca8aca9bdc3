// Reads what objects of the device hold, for what shows them.
#pragma once

#include "platform/win32.h"

#include "snapshot/compare/info_source.h"
#include "storage/objects/database_layer.h"

namespace tolvenar {

// The data of a registry value that the registry-object table knows. `size` is the buffer's and
// becomes the data's, in bytes. False when the value is not there or its data are longer.
bool ReadLiveValue(LiveObjects& live, const ObjectRecord& record, void* buffer, DWORD& size,
                   DWORD& type);
// The properties of a database record that `block` describes, strings and blobs as offsets. False
// when there is no such record.
bool ReadLiveRecord(DatabaseLayer& databases, const ObjectRecord& record, const InfoBlock& block,
                    RecordBuffer& buffer);
// The start of a file. `size` is the buffer's and becomes what was read, in bytes. False when the
// file cannot be opened or read.
bool ReadLiveFile(const char16_t* path, void* buffer, DWORD& size);

}  // namespace tolvenar
