// Journals that are no longer in use and that nobody deletes: "Home.jrn_old", "Home.jrn_old2", ...
#pragma once

#include "storage/format/storage_names.h"

namespace tolvenar {

// Renames `path`, a journal of the storage, to the first of these names that is free, and says so
// in the log. False, and the file stays as it is, when the platform refuses.
bool MoveJournalAside(const StorageNames& names, const char16_t* path);

}  // namespace tolvenar
