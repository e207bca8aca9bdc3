// The head of a storage file, and the refusal of what is none.
#pragma once

#include <string>

#include "storage/format/storage_reader.h"

namespace tolvenar::pc {

// Throws a Failure when the file has no head of a storage, or one of a newer version.
StorageHeader ReadStorageHead(StorageReader& reader, const std::string& path);

}  // namespace tolvenar::pc
