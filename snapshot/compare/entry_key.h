// Where a record enters a list whose keys carry no state. Platform-free.
#pragma once

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// The key under which `record` enters `list`: `key`, its own. Where that leads to another registry
// object it is the first key with another collision counter that is free or leads to the same
// object. An object that cannot be described counts as the same: a damaged block must not keep its
// old version beside the new one. With every counter taken it is `key` again.
ObjectKey EntryKey(const ObjectList& list, const ObjectKey& key, const ObjectRecord& record,
                   InfoSource& info);

}  // namespace tolvenar
