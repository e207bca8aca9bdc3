// The record that an object of a salvaged storage gets.
#pragma once

#include "pc/storage/block_walk.h"
#include "pc/storage/stored_object.h"
#include "storage/format/storage_reader.h"

namespace tolvenar::pc {

// An object as its block alone tells it. Its record leads to the old places; checksums and the
// generated id are made from the block and the data, the object-store id is that of the proof, or
// 0. A damaged one has data that are not what the proof says, or could not be written to a device.
StoredObject DescribeFound(StorageReader& reader, const FoundBlock& found);

}  // namespace tolvenar::pc
