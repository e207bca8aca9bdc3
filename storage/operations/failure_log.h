// The log's lines about what a restore left over.
#pragma once

#include "snapshot/compare/info_source.h"
#include "storage/opened/opened_storage.h"

namespace tolvenar {

// A line for each record that is left in the difference list, with its reason.
void LogNotRestored(const OpenedStorage& storage, InfoSource& info);

}  // namespace tolvenar
