// The card of a device that has just woken up.
#pragma once

#include "storage/format/storage_names.h"

namespace tolvenar {

// Waits until the folder of the storage at `path` is there, 15 seconds at most: a card that was
// without power takes seconds to come up, and until then its files pass for missing.
void WaitForStorageFolder(const char16_t* path);

}  // namespace tolvenar
