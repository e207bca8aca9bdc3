// Journals that are no longer in use and that nobody deletes: "Home.jrn_old", "Home.jrn_old2", ...
#pragma once

#include "storage/format/storage_names.h"

namespace tolvenar {

// Renames `path`, a journal of the storage, to the first of these names that is free, and says so
// in the log. False, and the file stays as it is, when the platform refuses.
bool MoveJournalAside(const StorageNames& names, const char16_t* path);

// The one of these files that was written last; of one time that with the greater number. False
// when there is none.
bool FindNewestOldJournal(const StorageNames& names, char16_t (&path)[kStorageNameUnits]);

// Gives the journal the name of the old one and the old one its place. False when the platform
// refuses; both files are there in any case, and the journal is where it was if that can be.
bool ExchangeJournals(const StorageNames& names, const char16_t* old_path);

}  // namespace tolvenar
