// Registry objects that a difference list deletes and writes back at once. Platform-free.
#pragma once

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// Marks as done the deletion of every registry object that `diff` also writes back, or may write
// back: the stored description cannot be read. Such a pair comes from a comparison that could not
// read the description. Deleting a key would take all below it, and a value whose block is damaged
// could not be written back; nothing would bring either back. False, and nothing marked, when there
// is no memory.
bool KeepStoredObjects(ObjectList& diff, InfoSource& info);

}  // namespace tolvenar
