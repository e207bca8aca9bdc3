// Registry keys that a difference list deletes and writes back at once. Platform-free.
#pragma once

#include "snapshot/info_source.h"
#include "snapshot/object_list.h"

namespace tolvenar {

// Marks as done the deletion of every key that `diff` also writes back, or may write back: the
// stored description cannot be read. Such a pair comes from a comparison that could not read the
// description, and deleting the key would take all below it, which nothing would bring back.
void KeepStoredKeys(ObjectList& diff, InfoSource& info);

}  // namespace tolvenar
