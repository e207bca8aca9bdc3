// Keys that a restore must not delete: the platform takes everything below a key with it.
#pragma once

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// Marks as done, with a line in the log, the deletion of every key below which something stays: an
// object of the state `target` (null is none) that the list does not write back, or one that is
// held back; with `of_other_states`, where the list does not tell what the device has, also when
// something on the device is below it that the list does not delete. The case of letters does not
// count. False when there is no memory.
bool KeepKeys(ObjectList& difference, const ObjectList* target, bool of_other_states,
              InfoSource& info);

}  // namespace tolvenar
