// The objects of one state, described and in the order in which people look for them.
#pragma once

#include <cstdint>
#include <vector>

#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

// The order of lists: files by path, then the registry by key with the values of a key behind it,
// then databases with their records, then what is damaged.
bool StandsBefore(const StoredObject& a, const StoredObject& b);

// In that order. Of two versions of one object, which a failed backup leaves, the newer one. The
// state's own record is not among them.
std::vector<StoredObject> ObjectsOf(StoredPair& pair, std::uint16_t state);
// The files and folders alone: describing the others would take longer than they do.
std::vector<StoredObject> FilesOf(StoredPair& pair, std::uint16_t state);

// Describes records, reading their blocks in the order of the storage file.
std::vector<StoredObject> DescribeAll(StoredPair& pair, std::vector<ObjectRecord> records);

}  // namespace tolvenar::pc
